#include "kxcharts/toolkit/controls/KXSavePicture.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <cctype>
#include <exception>
#include <fstream>
#include <string>
#include <string_view>
#include <unordered_map>

#include "kxcharts/toolkit/runtime/KXSysUtils.h"

namespace kx {

namespace {

constexpr int32_t MaxExtent = TBitmap::MaxExtent;

std::string SizeText(int64_t Width, int64_t Height) {
  return std::to_string(Width) + " x " + std::to_string(Height);
}

void CheckSize(int32_t Width, int32_t Height) {
  if (Width < 1 || Height < 1 || Width > MaxExtent || Height > MaxExtent)
    throw EInvalidGraphic("A picture is 1 to " + std::to_string(MaxExtent) +
                          " pixels wide and high, not " + SizeText(Width, Height));
}

cairo_status_t AppendChunk(void* Closure, const unsigned char* Data, unsigned int Length) {
  auto* Bytes = static_cast<std::vector<uint8_t>*>(Closure);
  Bytes->insert(Bytes->end(), Data, Data + Length);
  return CAIRO_STATUS_SUCCESS;
}

// Cairo numbers an SVG's images and surfaces by counts it keeps across documents, so two
// saves of one picture would differ in those ids alone. They are numbered again from 1, in
// the order they appear, each kind on its own; an id is a kind's name after `"` or `#`,
// then digits (an embedded image's data starts "data:image/", which is neither).
void RenumberSvgIds(std::vector<uint8_t>& Bytes) {
  static constexpr std::string_view Kinds[] = {"image", "surface"};
  const std::string_view In(reinterpret_cast<const char*>(Bytes.data()), Bytes.size());
  std::string Out;
  Out.reserve(In.size());
  std::unordered_map<std::string_view, int> Numbers[2];
  size_t Copied = 0;
  for (size_t I = 1; I < In.size(); ++I) {
    if (In[I - 1] != '"' && In[I - 1] != '#') continue;
    for (size_t K = 0; K < 2; ++K) {
      const std::string_view Kind = Kinds[K];
      if (In.compare(I, Kind.size(), Kind) != 0) continue;
      size_t End = I + Kind.size();
      while (End < In.size() && std::isdigit(static_cast<unsigned char>(In[End])))
        ++End;
      if (End == I + Kind.size()) break;
      const std::string_view Old = In.substr(I, End - I);
      const int New = Numbers[K].try_emplace(Old, int(Numbers[K].size()) + 1).first->second;
      Out.append(In.substr(Copied, I - Copied)).append(Kind).append(std::to_string(New));
      Copied = End;
      I = End - 1;
      break;
    }
  }
  Out.append(In.substr(Copied));
  Bytes.assign(Out.begin(), Out.end());
}

// A vector document in memory: Cairo writes it through AppendChunk as it goes and finishes
// it when the surface is finished.
std::vector<uint8_t> PaintVector(const TPicturePainter& Paint, int32_t Width, int32_t Height,
                                 TPictureKind Kind) {
  std::vector<uint8_t> Bytes;
  cairo_surface_t* Surface =
      Kind == pkSvg ? cairo_svg_surface_create_for_stream(AppendChunk, &Bytes, Width, Height)
                    : cairo_pdf_surface_create_for_stream(AppendChunk, &Bytes, Width, Height);
  TFinally Release([Surface] { cairo_surface_destroy(Surface); });
  if (Kind == pkSvg) cairo_svg_surface_set_document_unit(Surface, CAIRO_SVG_UNIT_PX);
  // Without a date of making, one picture gives the same bytes each time it is saved.
  if (Kind == pkPdf) cairo_pdf_surface_set_metadata(Surface, CAIRO_PDF_METADATA_CREATE_DATE, "");
  {
    TOwned<TCanvas> Canvas = MakeOwned<TCanvas>();
    Canvas->Bind(Surface, Width, Height);
    Paint(Canvas.get());
  }
  cairo_surface_finish(Surface);
  const cairo_status_t Status = cairo_surface_status(Surface);
  if (Status != CAIRO_STATUS_SUCCESS)
    throw EInvalidGraphic(std::string("Cannot make the ") + (Kind == pkSvg ? "SVG" : "PDF") +
                          " document: " + cairo_status_to_string(Status));
  if (Kind == pkSvg) RenumberSvgIds(Bytes);
  return Bytes;
}

void WriteBytes(const std::filesystem::path& FileName, const std::vector<uint8_t>& Bytes) {
  std::ofstream Out(FileName, std::ios::binary | std::ios::trunc);
  if (Out) Out.write(reinterpret_cast<const char*>(Bytes.data()), std::streamsize(Bytes.size()));
  if (!Out || (Out.close(), !Out))
    throw EInvalidGraphic("Cannot write the picture \"" + FileName.string() +
                          "\": check that its folder exists and may be written to");
}

// The control at the picture's size for as long as the object lives.
class TPictureBounds {
public:
  TPictureBounds(TControl* Control, int32_t Width, int32_t Height)
      : FControl(Control), FOld(Control->BoundsRect()) {
    const int32_t W = Width > 0 ? Width : FOld.Width(), H = Height > 0 ? Height : FOld.Height();
    if (W < 1 || H < 1) {
      const std::string Name =
          Control->Name().empty() ? "a " + Control->ClassName() : Control->Name();
      throw EInvalidGraphic("Cannot save a picture of " + Name + ", which is " + SizeText(W, H) +
                            " pixels: give it a size (SetBounds) or " + "pass one to SavePicture");
    }
    CheckSize(W, H);
    if (W != FOld.Width() || H != FOld.Height()) FControl->SetBounds(FOld.Left, FOld.Top, W, H);
  }
  // Giving the size back may raise (a handler of the resize); while another error is on its
  // way, that one is the one to see.
  ~TPictureBounds() noexcept(false) {
    if (FControl->BoundsRect() == FOld) return;
    if (std::uncaught_exceptions() > FUncaught) {
      try {
        Restore();
      } catch (...) {
      }
    } else {
      Restore();
    }
  }
  TPictureBounds(const TPictureBounds&) = delete;
  TPictureBounds& operator=(const TPictureBounds&) = delete;

private:
  TControl* FControl;
  TRect FOld;
  int FUncaught = std::uncaught_exceptions();

  void Restore() { FControl->SetBounds(FOld.Left, FOld.Top, FOld.Width(), FOld.Height()); }
};

void PaintControl(TControl* Control, TCanvas* Canvas) {
  if (auto* W = dynamic_cast<TWinControl*>(Control))
    W->PaintTo(Canvas, 0, 0);
  else if (auto* G = dynamic_cast<TGraphicControl*>(Control))
    G->PaintTo(Canvas, 0, 0);
}

} // namespace

TPictureKind PictureKindOf(const std::filesystem::path& FileName) {
  std::string Ext = FileName.extension().string();
  for (char& C : Ext)
    C = static_cast<char>(std::tolower(static_cast<unsigned char>(C)));
  if (Ext == ".png") return pkPng;
  if (Ext == ".svg") return pkSvg;
  if (Ext == ".pdf") return pkPdf;
  throw EInvalidGraphic("Cannot tell the kind of picture from the name \"" + FileName.string() +
                        "\": end it in .png, .svg or .pdf");
}

std::vector<uint8_t> SavePictureToBytes(const TPicturePainter& Paint, int32_t Width, int32_t Height,
                                        TPictureKind Kind) {
  CheckSize(Width, Height);
  if (Kind != pkPng) return PaintVector(Paint, Width, Height, Kind);
  TOwned<TBitmap> Bitmap = MakeOwned<TBitmap>();
  Bitmap->SetSize(Width, Height);
  Paint(Bitmap->Canvas());
  return Bitmap->SaveToBytes();
}

void SavePicture(const TPicturePainter& Paint, int32_t Width, int32_t Height,
                 const std::filesystem::path& FileName) {
  const TPictureKind Kind = PictureKindOf(FileName);
  WriteBytes(FileName, SavePictureToBytes(Paint, Width, Height, Kind));
}

std::vector<uint8_t> SavePictureToBytes(TControl* Control, TPictureKind Kind, int32_t Width,
                                        int32_t Height) {
  if (!Control) throw EInvalidGraphic("Cannot save a picture of no control (nullptr)");
  TPictureBounds Bounds(Control, Width, Height);
  return SavePictureToBytes([Control](TCanvas* Canvas) { PaintControl(Control, Canvas); },
                            Control->Width(), Control->Height(), Kind);
}

void SavePicture(TControl* Control, const std::filesystem::path& FileName, int32_t Width,
                 int32_t Height) {
  const TPictureKind Kind = PictureKindOf(FileName);
  WriteBytes(FileName, SavePictureToBytes(Control, Kind, Width, Height));
}

} // namespace kx

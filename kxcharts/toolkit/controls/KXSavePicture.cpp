#include "kxcharts/toolkit/controls/KXSavePicture.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <cctype>
#include <exception>
#include <fstream>
#include <string>

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

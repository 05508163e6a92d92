#include "kxcharts/toolkit/graphics/KXBitmap.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

namespace {

// Pictures larger than this many pixels are refused before any memory is asked for: a
// hostile header must not make the reader allocate gigabytes.
constexpr int64_t MaxPixels = int64_t(1) << 28;

std::string Quoted(const std::string& FileName) {
  return "\"" + FileName + "\"";
}

// Width and height from the header of a PNG; false when Data does not start like one.
bool PngHeaderSize(std::span<const uint8_t> Data, int64_t& W, int64_t& H) {
  static const uint8_t Signature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  if (Data.size() < 24 || std::memcmp(Data.data(), Signature, 8) != 0 ||
      std::memcmp(Data.data() + 12, "IHDR", 4) != 0)
    return false;
  auto Be32 = [&](size_t At) {
    return (int64_t(Data[At]) << 24) | (int64_t(Data[At + 1]) << 16) |
           (int64_t(Data[At + 2]) << 8) | int64_t(Data[At + 3]);
  };
  W = Be32(16);
  H = Be32(20);
  return true;
}

// Checks what can be checked before Cairo reads the data; Where names the source in messages.
void CheckPng(std::span<const uint8_t> Data, const std::string& Where) {
  int64_t W = 0, H = 0;
  if (!PngHeaderSize(Data, W, H)) throw EInvalidGraphic(Where + " is not a PNG image");
  if (W <= 0 || H <= 0 || W > TBitmap::MaxExtent || H > TBitmap::MaxExtent || W * H > MaxPixels)
    throw EInvalidGraphic(Where + " holds an image of " + std::to_string(W) + " x " +
                          std::to_string(H) + " pixels, which is not supported");
}

struct TReadCursor {
  std::span<const uint8_t> Data;
  size_t At = 0;
};

cairo_status_t ReadChunk(void* Closure, unsigned char* Out, unsigned int Length) {
  auto* C = static_cast<TReadCursor*>(Closure);
  if (C->Data.size() - C->At < Length) return CAIRO_STATUS_READ_ERROR;
  std::memcpy(Out, C->Data.data() + C->At, Length);
  C->At += Length;
  return CAIRO_STATUS_SUCCESS;
}

cairo_status_t WriteChunk(void* Closure, const unsigned char* Data, unsigned int Length) {
  static_cast<std::vector<uint8_t>*>(Closure)->insert(
      static_cast<std::vector<uint8_t>*>(Closure)->end(), Data, Data + Length);
  return CAIRO_STATUS_SUCCESS;
}

cairo_surface_t* DecodePng(std::span<const uint8_t> Data, const std::string& Where) {
  CheckPng(Data, Where);
  TReadCursor Cursor{Data};
  cairo_surface_t* S = cairo_image_surface_create_from_png_stream(ReadChunk, &Cursor);
  const cairo_status_t Status = cairo_surface_status(S);
  if (Status != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(S);
    throw EInvalidGraphic(Where +
                          " cannot be read as a PNG image: " + cairo_status_to_string(Status));
  }
  return S;
}

std::vector<uint8_t> ReadFile(const std::string& FileName) {
  std::error_code Ignored;
  if (std::filesystem::is_directory(FileName, Ignored))
    throw EInvalidGraphic("Cannot open the file " + Quoted(FileName) + ": it is a folder");
  std::ifstream In(FileName, std::ios::binary);
  if (!In) throw EInvalidGraphic("Cannot open the file " + Quoted(FileName));
  std::vector<uint8_t> Bytes;
  char Buffer[65536];
  while (In.read(Buffer, sizeof Buffer) || In.gcount() > 0) {
    Bytes.insert(Bytes.end(), Buffer, Buffer + In.gcount());
    if (Bytes.size() > size_t(MaxPixels) * 4)
      throw EInvalidGraphic("The file " + Quoted(FileName) + " is too large for an image");
  }
  return Bytes;
}

void WriteFile(const std::string& FileName, const std::vector<uint8_t>& Bytes) {
  std::ofstream Out(FileName, std::ios::binary | std::ios::trunc);
  if (Out) Out.write(reinterpret_cast<const char*>(Bytes.data()), std::streamsize(Bytes.size()));
  if (!Out || (Out.close(), !Out))
    throw EInvalidGraphic("Cannot write the file " + Quoted(FileName));
}

cairo_format_t CairoFormat(TPixelFormat Format) {
  return Format == pf24bit ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32;
}

cairo_surface_t* NewImage(int32_t W, int32_t H, TPixelFormat Format = pf32bit) {
  cairo_surface_t* S = cairo_image_surface_create(CairoFormat(Format), W, H);
  if (cairo_surface_status(S) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(S);
    throw EInvalidGraphic("Cannot make a bitmap of " + std::to_string(W) + " x " +
                          std::to_string(H) + " pixels");
  }
  return S;
}

// Base64 (RFC 4648, with padding), for pictures in stored forms.
std::string ToBase64(const std::vector<uint8_t>& Bytes) {
  static const char Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string Out;
  Out.reserve((Bytes.size() + 2) / 3 * 4);
  for (size_t I = 0; I < Bytes.size(); I += 3) {
    const uint32_t N = (uint32_t(Bytes[I]) << 16) |
                       (I + 1 < Bytes.size() ? uint32_t(Bytes[I + 1]) << 8 : 0) |
                       (I + 2 < Bytes.size() ? uint32_t(Bytes[I + 2]) : 0);
    Out += Digits[(N >> 18) & 63];
    Out += Digits[(N >> 12) & 63];
    Out += I + 1 < Bytes.size() ? Digits[(N >> 6) & 63] : '=';
    Out += I + 2 < Bytes.size() ? Digits[N & 63] : '=';
  }
  return Out;
}

// Raises EInvalidGraphic for text that is not base64.
std::vector<uint8_t> FromBase64(std::string_view Text) {
  auto Value = [](char C) -> int {
    if (C >= 'A' && C <= 'Z') return C - 'A';
    if (C >= 'a' && C <= 'z') return C - 'a' + 26;
    if (C >= '0' && C <= '9') return C - '0' + 52;
    if (C == '+') return 62;
    if (C == '/') return 63;
    return -1;
  };
  while (!Text.empty() && Text.back() == '=')
    Text.remove_suffix(1);
  std::vector<uint8_t> Out;
  Out.reserve(Text.size() * 3 / 4);
  uint32_t Bits = 0;
  int Count = 0;
  for (char C : Text) {
    const int V = Value(C);
    if (V < 0) throw EInvalidGraphic("The image data is not base64 text");
    Bits = (Bits << 6) | uint32_t(V);
    if (++Count == 4) {
      Out.push_back(uint8_t(Bits >> 16));
      Out.push_back(uint8_t(Bits >> 8));
      Out.push_back(uint8_t(Bits));
      Bits = 0;
      Count = 0;
    }
  }
  if (Count == 1) throw EInvalidGraphic("The image data is not base64 text");
  if (Count >= 2) Out.push_back(uint8_t(Bits >> (Count == 2 ? 4 : 10)));
  if (Count == 3) Out.push_back(uint8_t(Bits >> 2));
  return Out;
}

} // namespace

// --- TGraphic ---

void TGraphic::SetTransparent(bool Value) {
  if (Value == FTransparent) return;
  FTransparent = Value;
  Changed();
}

void TGraphic::Changed() {
  if (FOnChange) FOnChange(this);
}

// --- TBitmap ---

TBitmap::TBitmap() : FCanvas(MakeOwned<TCanvas>()) {
  FSurface = NewImage(0, 0);
  FCanvas->Bind(FSurface);
}

TBitmap::~TBitmap() {
  FCanvas.reset();
  if (FSurface) cairo_surface_destroy(FSurface);
}

void TBitmap::Adopt(cairo_surface_t* Surface, TPixelFormat Format) {
  if (cairo_image_surface_get_format(Surface) != CairoFormat(Format)) {
    cairo_surface_t* Converted = NewImage(cairo_image_surface_get_width(Surface),
                                          cairo_image_surface_get_height(Surface), Format);
    cairo_t* Cr = cairo_create(Converted);
    // Pixels that lose their alpha keep the colour they show on white.
    if (Format == pf24bit) {
      cairo_set_source_rgb(Cr, 1, 1, 1);
      cairo_paint(Cr);
    } else {
      cairo_set_operator(Cr, CAIRO_OPERATOR_SOURCE);
    }
    cairo_set_source_surface(Cr, Surface, 0, 0);
    cairo_paint(Cr);
    cairo_destroy(Cr);
    cairo_surface_destroy(Surface);
    Surface = Converted;
  }
  cairo_surface_t* Old = FSurface;
  FSurface = Surface;
  FWidth = cairo_image_surface_get_width(Surface);
  FHeight = cairo_image_surface_get_height(Surface);
  FCanvas->Bind(FSurface);
  if (Old) cairo_surface_destroy(Old);
}

void TBitmap::SetSize(int32_t NewWidth, int32_t NewHeight) {
  NewWidth = std::clamp(NewWidth, 0, MaxExtent);
  NewHeight = std::clamp(NewHeight, 0, MaxExtent);
  if (NewWidth == FWidth && NewHeight == FHeight) return;
  if (int64_t(NewWidth) * NewHeight > MaxPixels)
    throw EInvalidGraphic("Cannot make a bitmap of " + std::to_string(NewWidth) + " x " +
                          std::to_string(NewHeight) + " pixels");
  cairo_surface_t* S = NewImage(NewWidth, NewHeight, PixelFormat());
  cairo_t* Cr = cairo_create(S);
  cairo_set_source_rgb(Cr, 1, 1, 1);
  cairo_paint(Cr);
  if (FWidth > 0 && FHeight > 0) {
    cairo_set_operator(Cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(Cr, FSurface, 0, 0);
    cairo_rectangle(Cr, 0, 0, FWidth, FHeight);
    cairo_fill(Cr);
  }
  cairo_destroy(Cr);
  Adopt(S, PixelFormat());
  Changed();
}

TPixelFormat TBitmap::PixelFormat() const {
  return cairo_image_surface_get_format(FSurface) == CAIRO_FORMAT_RGB24 ? pf24bit : pf32bit;
}

void TBitmap::SetPixelFormat(TPixelFormat Value) {
  if (Value == PixelFormat()) return;
  cairo_surface_reference(FSurface);
  Adopt(FSurface, Value);
  Changed();
}

void TBitmap::SetTransparentColor(TColor Value) {
  if (Value == FTransparentColor) return;
  FTransparentColor = Value;
  Changed();
}

void TBitmap::LoadFromFile(const std::string& FileName) {
  const std::vector<uint8_t> Bytes = ReadFile(FileName);
  Adopt(DecodePng(Bytes, "The file " + Quoted(FileName)), pf32bit);
  Changed();
}

void TBitmap::LoadFromBytes(std::span<const uint8_t> Data) {
  Adopt(DecodePng(Data, "The image data"), pf32bit);
  Changed();
}

std::vector<uint8_t> TBitmap::SaveToBytes() const {
  if (Empty()) throw EInvalidGraphic("An empty bitmap cannot be written as a PNG image");
  std::vector<uint8_t> Bytes;
  cairo_surface_flush(FSurface);
  const cairo_status_t Status = cairo_surface_write_to_png_stream(FSurface, WriteChunk, &Bytes);
  if (Status != CAIRO_STATUS_SUCCESS)
    throw EInvalidGraphic(std::string("Cannot encode the bitmap as PNG: ") +
                          cairo_status_to_string(Status));
  return Bytes;
}

void TBitmap::SaveToFile(const std::string& FileName) const {
  if (Empty())
    throw EInvalidGraphic("An empty bitmap cannot be written to the file " + Quoted(FileName));
  WriteFile(FileName, SaveToBytes());
}

void TBitmap::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* B = dynamic_cast<const TBitmap*>(Source)) {
    cairo_surface_t* S = NewImage(B->FWidth, B->FHeight, B->PixelFormat());
    cairo_t* Cr = cairo_create(S);
    cairo_set_operator(Cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(Cr, B->FSurface, 0, 0);
    cairo_paint(Cr);
    cairo_destroy(Cr);
    Adopt(S, B->PixelFormat());
    FTransparentColor = B->FTransparentColor;
    if (Transparent() != B->Transparent())
      SetTransparent(B->Transparent()); // raises the change
    else
      Changed();
    return;
  }
  inherited::Assign(Source);
}

void TBitmap::Draw(TCanvas* Canvas, const TRect& R, float Opacity) const {
  cairo_t* Cr = Canvas->Handle();
  cairo_surface_t* Source = FSurface;
  if (Transparent()) {
    // A copy with the transparent colour taken out.
    const uint32_t KeyPixel = OpaquePixel(
        FTransparentColor == clDefault ? FCanvas->Pixel(0, FHeight - 1) : FTransparentColor);
    Source = NewImage(FWidth, FHeight);
    cairo_surface_flush(FSurface);
    const auto* From = cairo_image_surface_get_data(FSurface);
    auto* To = cairo_image_surface_get_data(Source);
    const int Stride = cairo_image_surface_get_stride(FSurface);
    // The unused byte of a 24-bit pixel holds anything.
    const uint32_t Alpha = PixelFormat() == pf24bit ? 0xFF000000u : 0;
    for (int32_t Y = 0; Y < FHeight; ++Y) {
      const auto* In = reinterpret_cast<const uint32_t*>(From + Y * Stride);
      auto* Out = reinterpret_cast<uint32_t*>(To + Y * cairo_image_surface_get_stride(Source));
      for (int32_t X = 0; X < FWidth; ++X) {
        const uint32_t P = In[X] | Alpha;
        Out[X] = P == KeyPixel ? 0 : P;
      }
    }
    cairo_surface_mark_dirty(Source);
  }
  const double Sx = double(R.Width()) / FWidth, Sy = double(R.Height()) / FHeight;
  cairo_save(Cr);
  cairo_new_path(Cr);
  cairo_rectangle(Cr, R.Left, R.Top, R.Width(), R.Height());
  cairo_clip(Cr);
  cairo_translate(Cr, R.Left, R.Top);
  cairo_scale(Cr, Sx, Sy);
  cairo_set_source_surface(Cr, Source, 0, 0);
  cairo_pattern_t* Pattern = cairo_get_source(Cr);
  // Whole-pixel copies stay sharp; scaled ones are filtered and keep their edges.
  cairo_pattern_set_filter(Pattern,
                           Sx == 1.0 && Sy == 1.0 ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_GOOD);
  cairo_pattern_set_extend(Pattern, CAIRO_EXTEND_PAD);
  if (Opacity >= 1.0f)
    cairo_paint(Cr);
  else
    cairo_paint_with_alpha(Cr, Opacity);
  cairo_restore(Cr);
  if (Source != FSurface) cairo_surface_destroy(Source);
}

// --- TPicture ---

TPicture::TPicture() = default;
TPicture::~TPicture() = default;

void TPicture::Changed() {
  if (FOnChange) FOnChange(this);
}

void TPicture::Hold(TOwned<TGraphic> Graphic) {
  FGraphic = std::move(Graphic);
  if (FGraphic) FGraphic->SetOnChange([this](TObject*) { Changed(); });
  Changed();
}

void TPicture::SetGraphic(const TGraphic* Value) {
  if (Value == FGraphic.get() && Value) return;
  if (!Value) {
    if (FGraphic) Hold(nullptr);
    return;
  }
  auto* Meta = dynamic_cast<const TObjectMeta*>(Value->ClassType());
  TOwned<TGraphic> Copy(Meta ? dynamic_cast<TGraphic*>(Meta->Create()) : nullptr);
  if (!Copy) throw EInvalidGraphic("Cannot copy a " + Value->ClassName());
  Copy->Assign(Value);
  Hold(std::move(Copy));
}

TBitmap* TPicture::Bitmap() {
  if (!Is<TBitmap>(FGraphic.get())) Hold(MakeOwned<TBitmap>());
  return static_cast<TBitmap*>(FGraphic.get());
}

void TPicture::LoadFromFile(const std::string& FileName) {
  std::string Ext = std::filesystem::path(FileName).extension().string();
  std::transform(Ext.begin(), Ext.end(), Ext.begin(),
                 [](unsigned char C) { return static_cast<char>(std::tolower(C)); });
  if (Ext != ".png")
    throw EInvalidGraphic("Unknown picture file extension (" + (Ext.empty() ? "none" : Ext) +
                          ") of the file " + Quoted(FileName));
  TOwned<TBitmap> B = MakeOwned<TBitmap>();
  B->LoadFromFile(FileName);
  Hold(std::move(B));
}

void TPicture::SaveToFile(const std::string& FileName) const {
  if (!FGraphic)
    throw EInvalidGraphic("An empty picture cannot be written to the file " + Quoted(FileName));
  FGraphic->SaveToFile(FileName);
}

void TPicture::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (!Source) {
    SetGraphic(nullptr);
    return;
  }
  if (auto* P = dynamic_cast<const TPicture*>(Source)) {
    SetGraphic(P->Graphic());
    return;
  }
  if (auto* G = dynamic_cast<const TGraphic*>(Source)) {
    SetGraphic(G);
    return;
  }
  inherited::Assign(Source);
}

void TPicture::AssignTo(TPersistent* Dest) const {
  if (FGraphic && Dest->InheritsFrom(FGraphic->ClassType())) {
    Dest->Assign(FGraphic.get());
    return;
  }
  inherited::AssignTo(Dest);
}

void TPicture::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.DefineProperty(
      "Data",
      [this](TReader& Reader) {
        TOwned<TBitmap> B = MakeOwned<TBitmap>();
        B->LoadFromBytes(FromBase64(Reader.ReadString()));
        Hold(std::move(B));
      },
      [this](TWriter& Writer) { Writer.WriteString(ToBase64(FGraphic->SaveToBytes())); },
      FGraphic && !FGraphic->Empty());
}

// --- TImageList ---

TImageList::TImageList(TComponent* AOwner) : TComponent(AOwner) {}

void TImageList::Changed() {
  if (FOnChange) FOnChange(this);
}

void TImageList::SetWidth(int32_t Value) {
  SetSize(Value, FHeight);
}

void TImageList::SetHeight(int32_t Value) {
  SetSize(FWidth, Value);
}

void TImageList::SetSize(int32_t NewWidth, int32_t NewHeight) {
  NewWidth = std::clamp(NewWidth, 1, TBitmap::MaxExtent);
  NewHeight = std::clamp(NewHeight, 1, TBitmap::MaxExtent);
  if (NewWidth == FWidth && NewHeight == FHeight) return;
  FWidth = NewWidth;
  FHeight = NewHeight;
  FImages.clear();
  Changed();
}

int32_t TImageList::Add(const TBitmap* Image) {
  if (!Image || Image->Empty()) return -1;
  const int32_t First = Count();
  const int32_t Pieces = (Image->Width() + FWidth - 1) / FWidth;
  if (int64_t(First) + Pieces > INT32_MAX) throw EListError("An image list is full");
  for (int32_t I = 0; I < Pieces; ++I) {
    TOwned<TBitmap> Piece = MakeOwned<TBitmap>();
    Piece->SetSize(FWidth, FHeight);
    cairo_t* Cr = cairo_create(Piece->Surface());
    cairo_set_operator(Cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgba(Cr, 0, 0, 0, 0);
    cairo_paint(Cr);
    cairo_set_source_surface(Cr, Image->Surface(), -double(I) * FWidth, 0);
    cairo_rectangle(Cr, 0, 0, FWidth, FHeight);
    cairo_fill(Cr);
    cairo_destroy(Cr);
    cairo_surface_mark_dirty(Piece->Surface());
    FImages.push_back(std::move(Piece));
  }
  Changed();
  return First;
}

int32_t TImageList::AddMasked(const TBitmap* Image, TColor MaskColor) {
  if (!Image || Image->Empty()) return -1;
  TOwned<TBitmap> Copy = MakeOwned<TBitmap>();
  Copy->Assign(Image);
  Copy->SetPixelFormat(pf32bit);
  cairo_surface_flush(Copy->Surface());
  auto* Data = cairo_image_surface_get_data(Copy->Surface());
  const int Stride = cairo_image_surface_get_stride(Copy->Surface());
  const uint32_t KeyPixel = OpaquePixel(MaskColor);
  for (int32_t Y = 0; Y < Copy->Height(); ++Y) {
    auto* Row = reinterpret_cast<uint32_t*>(Data + Y * Stride);
    for (int32_t X = 0; X < Copy->Width(); ++X)
      if (Row[X] == KeyPixel) Row[X] = 0;
  }
  cairo_surface_mark_dirty(Copy->Surface());
  return Add(Copy.get());
}

void TImageList::Delete(int32_t Index) {
  if (Index < 0 || Index >= Count())
    throw EListError("List index out of bounds (" + std::to_string(Index) + ")");
  FImages.erase(FImages.begin() + Index);
  Changed();
}

void TImageList::GetBitmap(int32_t Index, TBitmap* Image) const {
  if (Index < 0 || Index >= Count())
    throw EListError("List index out of bounds (" + std::to_string(Index) + ")");
  Image->Assign(FImages[size_t(Index)].get());
}

void TImageList::Clear() {
  if (FImages.empty()) return;
  FImages.clear();
  Changed();
}

const TBitmap* TImageList::Image(int32_t Index) const {
  return Index >= 0 && Index < Count() ? FImages[size_t(Index)].get() : nullptr;
}

void TImageList::Draw(TCanvas* Canvas, int32_t X, int32_t Y, int32_t Index, bool Enabled) const {
  const TBitmap* B = Image(Index);
  if (!B || !Canvas) return;
  if (Enabled) {
    Canvas->Draw(X, Y, B);
    return;
  }
  // Greyed: the image's own lightness, washed out.
  TOwned<TBitmap> Grey = MakeOwned<TBitmap>();
  Grey->Assign(B);
  Grey->SetPixelFormat(pf32bit);
  cairo_surface_flush(Grey->Surface());
  auto* Data = cairo_image_surface_get_data(Grey->Surface());
  const int Stride = cairo_image_surface_get_stride(Grey->Surface());
  for (int32_t Row = 0; Row < Grey->Height(); ++Row) {
    auto* P = reinterpret_cast<uint32_t*>(Data + Row * Stride);
    for (int32_t Col = 0; Col < Grey->Width(); ++Col) {
      const uint32_t A = P[Col] >> 24;
      const uint32_t L =
          (((P[Col] >> 16) & 0xFF) * 3 + ((P[Col] >> 8) & 0xFF) * 6 + (P[Col] & 0xFF)) / 10;
      const uint32_t G = (L + A) / 2; // halfway to white, premultiplied
      P[Col] = (A << 24) | (G << 16) | (G << 8) | G;
    }
  }
  cairo_surface_mark_dirty(Grey->Surface());
  Canvas->Draw(X, Y, Grey.get(), 0.6f);
}

void TImageList::StretchDraw(TCanvas* Canvas, const TRect& R, int32_t Index, float Opacity) const {
  if (const TBitmap* B = Image(Index); B && Canvas) Canvas->StretchDraw(R, B, Opacity);
}

void TImageList::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* L = dynamic_cast<const TImageList*>(Source)) {
    FWidth = L->FWidth;
    FHeight = L->FHeight;
    FImages.clear();
    for (const TOwned<TBitmap>& B : L->FImages) {
      TOwned<TBitmap> Copy = MakeOwned<TBitmap>();
      Copy->Assign(B.get());
      FImages.push_back(std::move(Copy));
    }
    Changed();
    return;
  }
  inherited::Assign(Source);
}

void TImageList::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  // The size first: setting it empties the list, which the images then fill.
  Filer.Property("Width", this, &TImageList::Width, &TImageList::SetWidth, 16);
  Filer.Property("Height", this, &TImageList::Height, &TImageList::SetHeight, 16);
  Filer.DefineProperty(
      "Images",
      [this](TReader& Reader) {
        const std::string Text = Reader.ReadString();
        std::vector<TOwned<TBitmap>> Read;
        for (size_t At = 0; At < Text.size();) {
          const size_t End = std::min(Text.find(' ', At), Text.size());
          TOwned<TBitmap> B = MakeOwned<TBitmap>();
          B->LoadFromBytes(FromBase64(std::string_view(Text).substr(At, End - At)));
          if (B->Width() != FWidth || B->Height() != FHeight)
            throw EInvalidGraphic("An image of the list is not " + std::to_string(FWidth) + " x " +
                                  std::to_string(FHeight) + " pixels");
          Read.push_back(std::move(B));
          At = End + 1;
        }
        FImages = std::move(Read);
        Changed();
      },
      [this](TWriter& Writer) {
        std::string Text;
        for (const TOwned<TBitmap>& B : FImages)
          Text += (Text.empty() ? "" : " ") + ToBase64(B->SaveToBytes());
        Writer.WriteString(Text);
      },
      !FImages.empty());
}

void RegisterGraphicsClasses() {
  RegisterClasses({ClassOf<TImageList>()});
}

} // namespace kx

#pragma once
// Pictures: TGraphic (anything a canvas can draw into a rectangle), TBitmap (an ARGB32 image
// with a canvas of its own, PNG in and out), TPicture (holds one graphic of any kind),
// TImageList (a component holding images of one size, drawn by index).

#include <cairo.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/objects/KXClasses.h"
#include "kxcharts/toolkit/objects/KXObject.h"
#include "kxcharts/toolkit/runtime/KXSysUtils.h"

namespace kx {

// A picture file or buffer that cannot be read or written.
class EInvalidGraphic : public Exception {
public:
  using Exception::Exception;
};

class TGraphic : public TPersistent {
  KX_CLASS(TGraphic, TPersistent)

public:
  virtual int32_t Width() const = 0;
  virtual int32_t Height() const = 0;
  // True when there is nothing to draw.
  virtual bool Empty() const { return Width() <= 0 || Height() <= 0; }
  // A transparent graphic leaves its transparent parts out when drawn (for a bitmap: the
  // pixels of its TransparentColor).
  bool Transparent() const { return FTransparent; }
  void SetTransparent(bool Value);

  const TNotifyEvent& OnChange() const { return FOnChange; }
  void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }

  // Raise EInvalidGraphic naming the file when it cannot be read or written.
  virtual void LoadFromFile(const std::string& FileName) = 0;
  virtual void SaveToFile(const std::string& FileName) const = 0;
  virtual void LoadFromBytes(std::span<const uint8_t> Data) = 0;
  virtual std::vector<uint8_t> SaveToBytes() const = 0;

protected:
  friend class TCanvas;
  // Paints the graphic into R (not empty, clamped) on Canvas with Opacity in (0, 1].
  virtual void Draw(TCanvas* Canvas, const TRect& R, float Opacity) const = 0;
  virtual void Changed();

private:
  TNotifyEvent FOnChange;
  bool FTransparent = false;
};

// How a bitmap keeps its pixels: pf32bit with alpha (ARGB32, premultiplied, as Cairo keeps
// it), pf24bit opaque (RGB24), which draws as a plain copy.
enum TPixelFormat : uint8_t { pf24bit, pf32bit };

// An off-screen image with its own canvas. The canvas object stays the same for the
// bitmap's life; SetSize and loading bind it to the new pixels.
class TBitmap : public TGraphic {
  KX_CLASS(TBitmap, TGraphic)

public:
  // The largest width or height Cairo can hold.
  static constexpr int32_t MaxExtent = 32767;

  TBitmap();
  ~TBitmap() override;

  int32_t Width() const override { return FWidth; }
  int32_t Height() const override { return FHeight; }
  void SetWidth(int32_t Value) { SetSize(Value, FHeight); }
  void SetHeight(int32_t Value) { SetSize(FWidth, Value); }
  // Sizes are clamped to 0..MaxExtent. The pixels that both sizes share are kept; new ones
  // are opaque white. Raises EInvalidGraphic when the memory cannot be had.
  void SetSize(int32_t NewWidth, int32_t NewHeight);
  TCanvas* Canvas() const { return FCanvas.get(); }
  cairo_surface_t* Surface() const { return FSurface; }
  // pf32bit unless set; pictures load as pf32bit. Going to pf24bit lays translucent pixels
  // over white; going back keeps every pixel opaque.
  TPixelFormat PixelFormat() const;
  void SetPixelFormat(TPixelFormat Value);

  // The colour left out when Transparent is set; clDefault (the start) means the colour of
  // the bottom left pixel.
  TColor TransparentColor() const { return FTransparentColor; }
  void SetTransparentColor(TColor Value);

  // PNG files and buffers.
  void LoadFromFile(const std::string& FileName) override;
  void SaveToFile(const std::string& FileName) const override;
  void LoadFromBytes(std::span<const uint8_t> Data) override;
  std::vector<uint8_t> SaveToBytes() const override;

  // Copies pixels, pixel format, transparency and size from another bitmap or from a picture's bitmap.
  void Assign(const TPersistent* Source) override;

protected:
  void Draw(TCanvas* Canvas, const TRect& R, float Opacity) const override;

private:
  // Takes over Surface (any image format) as the bitmap's pixels, in Format.
  void Adopt(cairo_surface_t* Surface, TPixelFormat Format);

  cairo_surface_t* FSurface = nullptr;
  TOwned<TCanvas> FCanvas;
  int32_t FWidth = 0;
  int32_t FHeight = 0;
  TColor FTransparentColor = clDefault;
};

// Holds one graphic, whatever its kind, and reports its changes.
class TPicture : public TPersistent {
  KX_CLASS(TPicture, TPersistent)

public:
  TPicture();
  ~TPicture() override;

  // The graphic held, or nil.
  TGraphic* Graphic() const { return FGraphic.get(); }
  // Holds a copy of Value (nil empties the picture).
  void SetGraphic(const TGraphic* Value);
  // The graphic as a bitmap; a picture that holds something else (or nothing) is given an
  // empty bitmap first.
  TBitmap* Bitmap();
  int32_t Width() const { return FGraphic ? FGraphic->Width() : 0; }
  int32_t Height() const { return FGraphic ? FGraphic->Height() : 0; }

  const TNotifyEvent& OnChange() const { return FOnChange; }
  void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }

  // Chooses the graphic by the file's extension (".png"). Raises EInvalidGraphic naming the
  // file for an unknown extension or a file that cannot be read; the picture is then as it
  // was.
  void LoadFromFile(const std::string& FileName);
  // Raises EInvalidGraphic when the picture is empty or the file cannot be written.
  void SaveToFile(const std::string& FileName) const;

  // From a picture or a graphic; nil empties the picture.
  void Assign(const TPersistent* Source) override;

protected:
  void AssignTo(TPersistent* Dest) const override;
  virtual void Changed();
  // "Data": the graphic as PNG, in base64.
  void DefineProperties(TFiler& Filer) override;

private:
  void Hold(TOwned<TGraphic> Graphic);

  TOwned<TGraphic> FGraphic;
  TNotifyEvent FOnChange;
};

// Images of one size (Width x Height), drawn by index: the pictures of points and shapes.
class TImageList : public TComponent {
  KX_CLASS(TImageList, TComponent)

public:
  explicit TImageList(TComponent* AOwner);

  int32_t Width() const { return FWidth; }
  // Width and Height are clamped to 1..TBitmap::MaxExtent; a new size empties the list, as
  // images of the old size no longer fit.
  void SetWidth(int32_t Value);
  int32_t Height() const { return FHeight; }
  void SetHeight(int32_t Value);
  void SetSize(int32_t NewWidth, int32_t NewHeight);
  int32_t Count() const { return static_cast<int32_t>(FImages.size()); }

  const TNotifyEvent& OnChange() const { return FOnChange; }
  void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }

  // Adds Image cut into pieces of Width from its left, each piece Height high from its top
  // (a strip of several images adds them all; a piece that falls short is padded with
  // transparent pixels). Answers the index of the first image added, or -1 for a missing or
  // empty image.
  int32_t Add(const TBitmap* Image);
  // The same, with the pixels of MaskColor made transparent.
  int32_t AddMasked(const TBitmap* Image, TColor MaskColor);
  // Raise EListError outside 0..Count-1.
  void Delete(int32_t Index);
  void GetBitmap(int32_t Index, TBitmap* Image) const;
  void Clear();
  // The image at Index, or nil outside 0..Count-1.
  const TBitmap* Image(int32_t Index) const;

  // Draws image Index with its top left at (X, Y); an index outside the list draws nothing.
  // A disabled image is drawn greyed.
  void Draw(TCanvas* Canvas, int32_t X, int32_t Y, int32_t Index, bool Enabled = true) const;
  // Draws image Index stretched into R, with Opacity.
  void StretchDraw(TCanvas* Canvas, const TRect& R, int32_t Index, float Opacity = 1.0f) const;

  void Assign(const TPersistent* Source) override;

protected:
  virtual void Changed();
  // Width, Height (both default 16), and "Images": each image as PNG in base64, separated
  // by blanks.
  void DefineProperties(TFiler& Filer) override;

private:
  std::vector<TOwned<TBitmap>> FImages;
  int32_t FWidth = 16;
  int32_t FHeight = 16;
  TNotifyEvent FOnChange;
};

// Registers the toolkit's streamed component classes (TImageList) with the class registry,
// so that a reader can make them by name. Safe to call more than once.
void RegisterGraphicsClasses();

} // namespace kx

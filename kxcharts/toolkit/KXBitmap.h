#pragma once
// Pictures: TGraphic (anything a canvas can draw into a rectangle), TBitmap (an ARGB32 image
// with a canvas of its own, PNG in and out), TPicture (holds one graphic of any kind).

#include <cairo.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "kxcharts/toolkit/KXCanvas.h"
#include "kxcharts/toolkit/KXObject.h"
#include "kxcharts/toolkit/KXSysUtils.h"

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
  virtual void Draw(TCanvas* Canvas, const TRect& R, float Opacity) = 0;
  virtual void Changed();

private:
  TNotifyEvent FOnChange;
  bool FTransparent = false;
};

// An off-screen ARGB32 image (premultiplied alpha, as Cairo keeps it) with its own canvas.
// The canvas object stays the same for the bitmap's life; SetSize and loading bind it to the
// new pixels.
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

  // The colour left out when Transparent is set; clDefault (the start) means the colour of
  // the bottom left pixel.
  TColor TransparentColor() const { return FTransparentColor; }
  void SetTransparentColor(TColor Value);

  // PNG files and buffers.
  void LoadFromFile(const std::string& FileName) override;
  void SaveToFile(const std::string& FileName) const override;
  void LoadFromBytes(std::span<const uint8_t> Data) override;
  std::vector<uint8_t> SaveToBytes() const override;

  // Copies pixels, transparency and size from another bitmap or from a picture's bitmap.
  void Assign(const TPersistent* Source) override;

protected:
  void Draw(TCanvas* Canvas, const TRect& R, float Opacity) override;

private:
  // Takes over Surface (any image format) as the bitmap's pixels.
  void Adopt(cairo_surface_t* Surface);

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
  // Stores the graphic as "Data": its PNG bytes in base64 text.
  void DefineProperties(TFiler& Filer) override;
  virtual void Changed();

private:
  void Hold(TOwned<TGraphic> Graphic);

  TOwned<TGraphic> FGraphic;
  TNotifyEvent FOnChange;
};

} // namespace kx

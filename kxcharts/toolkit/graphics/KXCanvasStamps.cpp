// TCanvas::DrawStamps: many copies of one small picture of opaque and clear pixels, written
// straight into an image: a copy costs as many stores as the picture has opaque pixels.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"

namespace kx {

bool TCanvas::DrawStamps(const TBitmap* Stamp, std::span<const TPoint> At) {
  if (!Stamp || !WritesPixels()) return false;
  cairo_surface_t* Source = Stamp->Surface();
  if (!Source || Stamp->Empty()) return true;
  cairo_surface_flush(Source);
  const bool SourceAlpha = cairo_image_surface_get_format(Source) == CAIRO_FORMAT_ARGB32;
  const unsigned char* Data = cairo_image_surface_get_data(Source);
  const int SourceStride = cairo_image_surface_get_stride(Source);
  // The opaque pixels of the stamp; a pixel between opaque and clear would blend with what
  // lies under it, which depends on every copy beneath.
  struct TDot {
    int32_t DX, DY;
    uint32_t Pixel;
  };
  std::vector<TDot> Dots;
  const int32_t W = Stamp->Width(), H = Stamp->Height();
  for (int32_t Y = 0; Y < H; ++Y) {
    const auto* Row = reinterpret_cast<const uint32_t*>(Data + ptrdiff_t(Y) * SourceStride);
    for (int32_t X = 0; X < W; ++X) {
      const uint32_t A = SourceAlpha ? Row[X] >> 24 : 255;
      if (A == 0) continue;
      if (A != 255) return false;
      Dots.push_back({X, Y, Row[X] | 0xFF000000u});
    }
  }
  if (Dots.empty() || At.empty() || !CanPaint()) return true;
  const TRect Area = DrawableArea();
  if (Area.IsEmpty()) return true;
  cairo_surface_flush(FSurface);
  int64_t DirtyL = Area.Right, DirtyT = Area.Bottom, DirtyR = Area.Left, DirtyB = Area.Top;
  for (const TPoint& P : At) {
    const int64_t X0 = P.X, Y0 = P.Y;
    if (X0 + W <= Area.Left || X0 >= Area.Right || Y0 + H <= Area.Top || Y0 >= Area.Bottom)
      continue;
    DirtyL = std::min(DirtyL, X0);
    DirtyT = std::min(DirtyT, Y0);
    DirtyR = std::max(DirtyR, X0 + W);
    DirtyB = std::max(DirtyB, Y0 + H);
    const bool Whole =
        X0 >= Area.Left && X0 + W <= Area.Right && Y0 >= Area.Top && Y0 + H <= Area.Bottom;
    if (Whole) {
      for (const TDot& D : Dots)
        PixelRow(static_cast<int32_t>(Y0 + D.DY))[X0 + D.DX] = D.Pixel;
      continue;
    }
    for (const TDot& D : Dots) {
      const int64_t X = X0 + D.DX, Y = Y0 + D.DY;
      if (X >= Area.Left && X < Area.Right && Y >= Area.Top && Y < Area.Bottom)
        PixelRow(static_cast<int32_t>(Y))[X] = D.Pixel;
    }
  }
  DirtyL = std::max<int64_t>(DirtyL, Area.Left);
  DirtyT = std::max<int64_t>(DirtyT, Area.Top);
  DirtyR = std::min<int64_t>(DirtyR, Area.Right);
  DirtyB = std::min<int64_t>(DirtyB, Area.Bottom);
  if (DirtyL < DirtyR && DirtyT < DirtyB)
    cairo_surface_mark_dirty_rectangle(FSurface, static_cast<int>(DirtyL),
                                       static_cast<int>(DirtyT), static_cast<int>(DirtyR - DirtyL),
                                       static_cast<int>(DirtyB - DirtyT));
  return true;
}

} // namespace kx

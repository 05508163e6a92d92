#pragma once
// Probes for pictures drawn on a TBitmap: pixel tests assert where colour went, not how a
// whole image looks.

#include <cstdint>
#include <functional>
#include <ostream>
#include <vector>

#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace kx {

// Readable failure messages for the plain value types.
inline void PrintTo(const TRect& R, std::ostream* Os) {
  *Os << "(" << R.Left << ", " << R.Top << ", " << R.Right << ", " << R.Bottom << ")";
}
inline void PrintTo(const TPoint& P, std::ostream* Os) {
  *Os << "(" << P.X << ", " << P.Y << ")";
}
inline void PrintTo(const TSize& S, std::ostream* Os) {
  *Os << "(" << S.cx << " x " << S.cy << ")";
}

} // namespace kx

namespace kx::test {

// A bitmap of W x H filled with Background.
TOwned<TBitmap> MakeBitmap(int32_t W, int32_t H, TColor Background = clWhite);
// A white bitmap of W x H whose canvas draws with or without antialiasing.
TOwned<TBitmap> MakeBitmap(int32_t W, int32_t H, bool Antialias);

// How two pictures of one size differ: the pixels that differ, the largest difference in
// any channel of any of them, and the first of them (row by row).
struct TPictureDifference {
  int32_t Pixels = 0;
  int Worst = 0;
  TPoint First{-1, -1};
};
TPictureDifference ComparePictures(const TBitmap* A, const TBitmap* B);

// The raw bytes of the pixels, for byte-for-byte comparisons.
std::vector<uint8_t> PixelBytes(const TBitmap* Bitmap);

// The number of pixels inside Area (the whole bitmap by default) for which Test holds.
int32_t CountPixels(const TBitmap* Bitmap, const std::function<bool(TColor)>& Test);
int32_t CountPixels(const TBitmap* Bitmap, const TRect& Area,
                    const std::function<bool(TColor)>& Test);
// The number of pixels that are not Background.
int32_t CountPainted(const TBitmap* Bitmap, TColor Background = clWhite);

// The smallest rectangle holding every pixel that is not Background; empty when none is.
TRect PaintedBounds(const TBitmap* Bitmap, TColor Background = clWhite);

// True when the colours differ by at most Tolerance in every channel.
bool Near(TColor A, TColor B, int Tolerance = 2);

} // namespace kx::test

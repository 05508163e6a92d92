#include "support/KXBitmapProbe.h"

#include <algorithm>
#include <cstdlib>

namespace kx::test {

TOwned<TBitmap> MakeBitmap(int32_t W, int32_t H, TColor Background) {
  TOwned<TBitmap> B = MakeOwned<TBitmap>();
  B->SetSize(W, H);
  B->Canvas()->Brush()->SetColor(Background);
  B->Canvas()->Brush()->SetStyle(bsSolid);
  B->Canvas()->FillRect({0, 0, W, H});
  return B;
}

TOwned<TBitmap> MakeBitmap(int32_t W, int32_t H, bool Antialias) {
  TOwned<TBitmap> B = MakeBitmap(W, H);
  if (!Antialias) cairo_set_antialias(B->Canvas()->Handle(), CAIRO_ANTIALIAS_NONE);
  return B;
}

TPictureDifference ComparePictures(const TBitmap* A, const TBitmap* B) {
  TPictureDifference D;
  for (int32_t Y = 0; Y < A->Height(); ++Y)
    for (int32_t X = 0; X < A->Width(); ++X) {
      const TColor P = A->Canvas()->Pixel(X, Y), Q = B->Canvas()->Pixel(X, Y);
      if (P == Q) continue;
      if (D.Pixels++ == 0) D.First = {X, Y};
      D.Worst = std::max({D.Worst, std::abs(int(GetRValue(P)) - int(GetRValue(Q))),
                          std::abs(int(GetGValue(P)) - int(GetGValue(Q))),
                          std::abs(int(GetBValue(P)) - int(GetBValue(Q)))});
    }
  return D;
}

std::vector<uint8_t> PixelBytes(const TBitmap* Bitmap) {
  cairo_surface_t* S = Bitmap->Surface();
  cairo_surface_flush(S);
  const auto* Data = cairo_image_surface_get_data(S);
  const size_t Size = size_t(cairo_image_surface_get_stride(S)) * Bitmap->Height();
  return Data ? std::vector<uint8_t>(Data, Data + Size) : std::vector<uint8_t>();
}

int32_t CountPixels(const TBitmap* Bitmap, const TRect& Area,
                    const std::function<bool(TColor)>& Test) {
  int32_t N = 0;
  for (int32_t Y = std::max(0, Area.Top); Y < std::min(Bitmap->Height(), Area.Bottom); ++Y)
    for (int32_t X = std::max(0, Area.Left); X < std::min(Bitmap->Width(), Area.Right); ++X)
      if (Test(Bitmap->Canvas()->Pixel(X, Y))) ++N;
  return N;
}

int32_t CountPixels(const TBitmap* Bitmap, const std::function<bool(TColor)>& Test) {
  return CountPixels(Bitmap, {0, 0, Bitmap->Width(), Bitmap->Height()}, Test);
}

int32_t CountPainted(const TBitmap* Bitmap, TColor Background) {
  return CountPixels(Bitmap, [&](TColor C) { return C != Background; });
}

TRect PaintedBounds(const TBitmap* Bitmap, TColor Background) {
  TRect R{Bitmap->Width(), Bitmap->Height(), 0, 0};
  for (int32_t Y = 0; Y < Bitmap->Height(); ++Y)
    for (int32_t X = 0; X < Bitmap->Width(); ++X)
      if (Bitmap->Canvas()->Pixel(X, Y) != Background) {
        R.Left = std::min(R.Left, X);
        R.Top = std::min(R.Top, Y);
        R.Right = std::max(R.Right, X + 1);
        R.Bottom = std::max(R.Bottom, Y + 1);
      }
  return R.IsEmpty() ? TRect{} : R;
}

bool Near(TColor A, TColor B, int Tolerance) {
  return std::abs(GetRValue(A) - GetRValue(B)) <= Tolerance &&
         std::abs(GetGValue(A) - GetGValue(B)) <= Tolerance &&
         std::abs(GetBValue(A) - GetBValue(B)) <= Tolerance;
}

} // namespace kx::test

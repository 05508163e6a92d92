// TCanvas::DrawStamps: copies of a small picture written straight into an image, the later
// over the earlier, within the clip; refused where the canvas cannot write its pixels or the
// picture would blend.
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "support/KXBitmapProbe.h"
#include "support/KXTestSupport.h"

namespace kx {
namespace {

using test::MakeBitmap;

// A 3 x 3 stamp: a red centre in a blue ring, its corners clear.
TOwned<TBitmap> MakeStamp() {
  TOwned<TBitmap> S = MakeBitmap(3, 3, clBlue);
  cairo_t* Cr = S->Canvas()->Handle();
  cairo_save(Cr);
  cairo_set_operator(Cr, CAIRO_OPERATOR_CLEAR);
  for (const auto& [X, Y] : {std::pair{0, 0}, {2, 0}, {0, 2}, {2, 2}})
    cairo_rectangle(Cr, X, Y, 1, 1);
  cairo_fill(Cr);
  cairo_restore(Cr);
  S->Canvas()->SetPixel(1, 1, clRed);
  return S;
}

TEST(CanvasStamps, LaterCopiesLieOverEarlierOnesAndClearPixelsLeaveWhatIsUnder) {
  auto Stamp = MakeStamp();
  auto Target = MakeBitmap(10, 10, clWhite);
  TCanvas* C = Target->Canvas();
  const std::vector<TPoint> At{{2, 2}, {3, 2}};
  ASSERT_TRUE(C->DrawStamps(Stamp.get(), At));
  EXPECT_EQ(C->Pixel(3, 3), clBlue) << "the second copy's ring covers the first's centre";
  EXPECT_EQ(C->Pixel(4, 3), clRed);
  EXPECT_EQ(C->Pixel(2, 2), clWhite) << "a clear corner paints nothing";
  EXPECT_EQ(C->Pixel(3, 2), clBlue) << "the first copy's ring under the second's clear corner";
  EXPECT_EQ(test::PaintedBounds(Target.get()), (TRect{2, 2, 6, 5}));
  // The same copies drawn one by one give the same picture.
  auto Each = MakeBitmap(10, 10, clWhite);
  for (const TPoint& P : At)
    Each->Canvas()->Draw(P.X, P.Y, Stamp.get());
  EXPECT_EQ(test::ComparePictures(Target.get(), Each.get()).Pixels, 0);
}

TEST(CanvasStamps, CopiesAreClippedAndFarPlacesAreHarmless) {
  auto Stamp = MakeStamp();
  auto Target = MakeBitmap(10, 10, clWhite);
  TCanvas* C = Target->Canvas();
  TCanvasClip Clip(C, {0, 0, 5, 10});
  const std::vector<TPoint> At{{4, 0}, {-1, 8}, {INT32_MIN, INT32_MIN}, {INT32_MAX, 5}, {20, 20}};
  ASSERT_TRUE(C->DrawStamps(Stamp.get(), At));
  EXPECT_EQ(C->Pixel(4, 1), clBlue);
  EXPECT_EQ(C->Pixel(5, 1), clWhite) << "beyond the clip";
  EXPECT_EQ(C->Pixel(0, 9), clRed) << "a copy that starts left of the picture";
  EXPECT_EQ(C->Pixel(0, 8), clBlue);
  // One pixel of the first copy inside the clip, three of the second inside the picture.
  EXPECT_EQ(test::CountPainted(Target.get()), 1 + 3);
}

TEST(CanvasStamps, RefusedOnAVectorFileAndForAPictureThatWouldBlend) {
  auto Stamp = MakeStamp();
  const std::vector<TPoint> At{{1, 1}};
  test::TTempDir Dir;
  TOwned<TCanvas> Svg = CreateSvgCanvas((Dir / "s.svg").string(), 10, 10);
  EXPECT_FALSE(Svg->DrawStamps(Stamp.get(), At));
  Svg->Finish();
  auto Target = MakeBitmap(10, 10, clWhite);
  {
    TCanvasOpacity Half(Target->Canvas(), 0.5f);
    EXPECT_FALSE(Target->Canvas()->DrawStamps(Stamp.get(), At)) << "inside an opacity layer";
  }
  // Half a pixel of coverage blends with what lies under it.
  cairo_t* Cr = Stamp->Canvas()->Handle();
  cairo_set_source_rgba(Cr, 0, 0, 0, 0.5);
  cairo_set_operator(Cr, CAIRO_OPERATOR_SOURCE);
  cairo_rectangle(Cr, 0, 0, 1, 1);
  cairo_fill(Cr);
  EXPECT_FALSE(Target->Canvas()->DrawStamps(Stamp.get(), At));
  EXPECT_EQ(test::CountPainted(Target.get()), 0);
}

} // namespace
} // namespace kx

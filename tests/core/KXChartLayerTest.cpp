#include "kxcharts/core/KXChartLayer.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "axes/KXAxesTestSupport.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"
#include "support/KXTestSupport.h"

namespace kx {

namespace {

constexpr TColor Blue = clBlue, Red = clRed, Green = clLime, Yellow = clYellow;

// A picture of W x H in four quadrants (blue, red / green, yellow), so that where each
// part of it lands can be told apart.
TOwned<TBitmap> Quadrants(int32_t W, int32_t H) {
  TOwned<TBitmap> B = test::MakeBitmap(W, H);
  TCanvas* C = B->Canvas();
  const TColor Colors[] = {Blue, Red, Green, Yellow};
  for (int I = 0; I < 4; ++I) {
    C->Brush()->SetColor(Colors[I]);
    const int32_t X = I % 2 ? W / 2 : 0, Y = I / 2 ? H / 2 : 0;
    C->FillRect({X, Y, I % 2 ? W : W / 2, I / 2 ? H : H / 2});
  }
  return B;
}

// A picture that is not a bitmap: a plain colour of any size.
class TPlainGraphic : public TGraphic {
  KX_CLASS(TPlainGraphic, TGraphic)
public:
  int32_t W = 0, H = 0;
  TColor Color = clBlack;
  int32_t Width() const override { return W; }
  int32_t Height() const override { return H; }
  void LoadFromFile(const std::string&) override {}
  void SaveToFile(const std::string&) const override {}
  void LoadFromBytes(std::span<const uint8_t>) override {}
  std::vector<uint8_t> SaveToBytes() const override { return {}; }
  void Assign(const TPersistent* Source) override {
    if (auto* P = dynamic_cast<const TPlainGraphic*>(Source)) {
      W = P->W, H = P->H, Color = P->Color;
      return;
    }
    TGraphic::Assign(Source);
  }

protected:
  void Draw(TCanvas* Canvas, const TRect& R, float) const override {
    Canvas->Brush()->SetColor(Color);
    Canvas->FillRect(R);
  }
};

TOwned<TKXChartLayer> LayerWith(const TGraphic* Picture, TImageMode Mode) {
  auto L = MakeOwned<TKXChartLayer>();
  L->Image()->SetGraphic(Picture);
  L->SetImageMode(Mode);
  return L;
}

// An axis over 0..100, zoomed to ZoomMin..ZoomMax.
TOwned<TKXChartAxis> MakeAxis(TKXChartAxisLocation Location, double ZoomMin, double ZoomMax) {
  auto A = test::MakeAxis(Location, 0, 100);
  A->SetZoomMinimum(ZoomMin);
  A->SetZoomMaximum(ZoomMax);
  return A;
}

// --- Fill and full scale ---

TEST(ChartLayer, FillsItsRectangleUnlessTransparent) {
  auto L = MakeOwned<TKXChartLayer>();
  L->Brush()->SetColor(clNavy);
  auto B = test::MakeBitmap(100, 80);
  L->Draw(B->Canvas(), {10, 20, 60, 50});
  EXPECT_EQ(test::PaintedBounds(B.get()), (TRect{10, 20, 60, 50}));
  EXPECT_EQ(B->Canvas()->Pixel(10, 20), clNavy);
  L->SetTransparent(true);
  B = test::MakeBitmap(100, 80);
  L->Draw(B->Canvas(), {10, 20, 60, 50});
  EXPECT_EQ(test::CountPainted(B.get()), 0) << "no fill and no picture: nothing at all";
}

TEST(ChartLayer, PutsAPictureOf100By50WhereItsModeSays) {
  const struct {
    TImageMode Mode;
    TRect Area, Painted;
  } Cases[] = {{imCenter, {0, 0, 400, 300}, {150, 125, 250, 175}},
               {imLeft, {0, 0, 400, 300}, {0, 125, 100, 175}},
               {imRight, {0, 0, 400, 300}, {300, 125, 400, 175}},
               {imTop, {0, 0, 400, 300}, {150, 0, 250, 50}},
               {imBottom, {0, 0, 400, 300}, {150, 250, 250, 300}},
               {imStretch, {10, 20, 400, 300}, {10, 20, 400, 300}},
               {imTile, {10, 20, 400, 300}, {10, 20, 400, 300}},
               {imProportional, {0, 0, 400, 400}, {0, 0, 400, 200}},
               {imProportionalCenter, {0, 0, 400, 400}, {0, 100, 400, 300}},
               // A picture larger than the rectangle is clipped to it.
               {imCenter, {200, 200, 260, 230}, {200, 200, 260, 230}}};
  auto Pic = test::MakeBitmap(100, 50, Red);
  for (const auto& C : Cases) {
    SCOPED_TRACE(GetEnumName(C.Mode));
    auto L = LayerWith(Pic.get(), C.Mode);
    auto B = test::MakeBitmap(450, 450);
    L->Draw(B->Canvas(), C.Area);
    EXPECT_EQ(test::PaintedBounds(B.get()), C.Painted);
  }
}

TEST(ChartLayer, TilesRepeatFromTheTopLeftCorner) {
  auto Pic = Quadrants(40, 20);
  auto L = LayerWith(Pic.get(), imTile);
  auto B = test::MakeBitmap(200, 100);
  L->Draw(B->Canvas(), {5, 5, 200, 100});
  EXPECT_EQ(B->Canvas()->Pixel(5, 5), Blue);
  EXPECT_EQ(B->Canvas()->Pixel(45, 25), Blue);
  EXPECT_EQ(B->Canvas()->Pixel(45 + 20, 25 + 10), Yellow);
}

TEST(ChartLayer, ATransparentLayerLeavesThePicturesTransparentColourOut) {
  auto Pic = test::MakeBitmap(20, 20, clFuchsia); // the bottom left pixel names the colour
  Pic->Canvas()->Brush()->SetColor(Red);
  Pic->Canvas()->FillRect({5, 5, 15, 15});
  auto L = LayerWith(Pic.get(), imLeft);
  L->SetTransparent(true);
  auto B = test::MakeBitmap(40, 20);
  L->Draw(B->Canvas(), {0, 0, 40, 20});
  EXPECT_EQ(test::PaintedBounds(B.get()), (TRect{5, 5, 15, 15}));
  EXPECT_TRUE(L->Image()->Graphic()->Transparent());
}

TEST(ChartLayer, APictureOfAnotherKindBecomesABitmapInTheFirstPaint) {
  auto Plain = MakeOwned<TPlainGraphic>();
  Plain->W = 30;
  Plain->H = 10;
  Plain->Color = Green;
  auto L = LayerWith(Plain.get(), imCenter);
  ASSERT_FALSE(Is<TBitmap>(L->Image()->Graphic()));
  auto B = test::MakeBitmap(100, 100);
  L->Draw(B->Canvas(), {0, 0, 100, 100});
  ASSERT_TRUE(Is<TBitmap>(L->Image()->Graphic()));
  EXPECT_EQ(L->Image()->Width(), 30);
  EXPECT_EQ(test::PaintedBounds(B.get()), (TRect{35, 45, 65, 55}));
  EXPECT_EQ(B->Canvas()->Pixel(50, 50), Green);
}

// --- Zoom ---

class LayerZoom : public testing::Test {
protected:
  TOwned<TBitmap> Pic = test::MakeBitmap(100, 50, Red);
  TOwned<TBitmap> Canvas = test::MakeBitmap(500, 400);
  TRect Painted(TKXChartLayer* L, const TRect& Area, TKXChartAxis* V, TKXChartAxis* H) {
    Canvas = test::MakeBitmap(500, 400);
    L->Draw(Canvas->Canvas(), Area, V, H);
    return test::PaintedBounds(Canvas.get());
  }
};

// Zoomed axes over 0..100: the picture grows and moves with them, one axis zooming alone
// is enough, a stretched picture is clipped to the rectangle; not zoomable or without zoom
// it stays put.
TEST_F(LayerZoom, ThePictureFollowsTheZoomOfEitherAxis) {
  const struct {
    TImageMode Mode;
    bool Zoomable;
    double HMin, HMax, VMin, VMax;
    TRect Area, Expected;
  } Cases[] = {{imCenter, true, 25, 75, 25, 75, {0, 0, 400, 300}, {100, 100, 300, 200}},
               {imCenter, true, 0, 50, 0, 100, {0, 0, 400, 300}, {300, 125, 400, 175}},
               {imStretch, true, 25, 75, 25, 75, {50, 50, 450, 350}, {50, 50, 450, 350}},
               {imCenter, false, 25, 75, 25, 75, {0, 0, 400, 300}, {150, 125, 250, 175}},
               {imCenter, true, 0, 100, 0, 100, {0, 0, 400, 300}, {150, 125, 250, 175}}};
  for (const auto& C : Cases) {
    auto L = LayerWith(Pic.get(), C.Mode);
    L->SetZoomable(C.Zoomable);
    auto H = MakeAxis(calBottom, C.HMin, C.HMax), V = MakeAxis(calLeft, C.VMin, C.VMax);
    EXPECT_EQ(Painted(L.get(), C.Area, V.get(), H.get()), C.Expected)
        << GetEnumName(C.Mode) << " " << C.HMin << ".." << C.HMax;
  }
  EXPECT_EQ(Canvas->Canvas()->Pixel(200, 150), Red);
}

TEST_F(LayerZoom, AnEmptyZoomedRangeDrawsTheFillButNoPicture) {
  auto L = LayerWith(Pic.get(), imCenter);
  L->Brush()->SetColor(clNavy);
  auto H = MakeAxis(calBottom, 40, 40), V = MakeAxis(calLeft, 25, 75);
  ASSERT_EQ(H->SizeZoomed(), 0.0);
  Painted(L.get(), {0, 0, 400, 300}, V.get(), H.get());
  EXPECT_EQ(test::CountPixels(Canvas.get(), [](TColor C) { return C == Red; }), 0);
  EXPECT_EQ(Canvas->Canvas()->Pixel(200, 150), clNavy);
}

TEST_F(LayerZoom, TilesGrowAndThePatternStaysWithTheData) {
  auto Q = Quadrants(50, 50);
  auto L = LayerWith(Q.get(), imTile);
  auto H = MakeAxis(calBottom, 25, 75), V = MakeAxis(calLeft, 25, 75);
  Painted(L.get(), {0, 0, 400, 300}, V.get(), H.get());
  // Tiles of 100 start at x = -200 and y = -150, so the rectangle's corner shows the lower
  // half of a tile's left half, and x = 25 (once at pixel 100) lies on a tile's edge.
  auto At = [&](int32_t X, int32_t Y) { return Canvas->Canvas()->Pixel(X, Y); };
  EXPECT_TRUE(test::Near(At(20, 20), Green, 8));
  EXPECT_TRUE(test::Near(At(70, 20), Yellow, 8));
  EXPECT_TRUE(test::Near(At(20, 70), Blue, 8));
  EXPECT_TRUE(test::Near(At(70, 70), Red, 8));
  EXPECT_TRUE(test::Near(At(120, 120), Green, 8)) << "the next tile, twice as large";
}

TEST_F(LayerZoom, TheAxesAreLetGoAfterwardsAlsoWhenAHandlerRaises) {
  auto L = LayerWith(Pic.get(), imCenter);
  auto H = MakeAxis(calBottom, 25, 75), V = MakeAxis(calLeft, 25, 75);
  TKXChartAxis* Seen = nullptr;
  L->SetOnDraw([&](TObject*, TCanvas*, const TRect&) {
    Seen = L->HorizontalAxis();
    throw std::runtime_error("handler");
  });
  EXPECT_THROW(L->Draw(Canvas->Canvas(), {0, 0, 400, 300}, V.get(), H.get()), std::runtime_error);
  EXPECT_EQ(Seen, H.get());
  EXPECT_EQ(L->HorizontalAxis(), nullptr);
  EXPECT_EQ(L->VerticalAxis(), nullptr);
  EXPECT_EQ(Canvas->Canvas()->LayerDepth(), 0) << "the clip is gone too";
}

// --- Copies and the stored form ---

TEST(ChartLayer, AssignAndTheStoredFormKeepEverySetting) {
  auto Form = MakeOwned<test::TPartsForm>(nullptr);
  Form->SetName("Form1");
  TKXChartLayer* L = Form->Add<TKXChartLayer>("Layer");
  EXPECT_EQ(SaveFormToString(Form.get()).find("\"Layer\""), std::string::npos)
      << "a fresh layer writes nothing";
  auto Pic = Quadrants(4, 2);
  L->Image()->SetGraphic(Pic.get());
  L->SetImageMode(imProportionalCenter);
  L->SetTransparent(true);
  L->SetZoomable(false);
  L->Brush()->SetColor(clTeal);
  L->Pen()->SetWidth(3);
  L->SetVisible(false);
  std::string Json;
  auto Loaded = test::RoundTrip(Form.get(), &Json);
  test::ExpectStored(Json, {"ImageMode", "Transparent", "Zoomable", "Color", "Width", "Visible"});
  EXPECT_EQ(Loaded->Part<TKXChartLayer>(0)->Image()->Bitmap()->Canvas()->Pixel(3, 1), Yellow);
  auto Copy = MakeOwned<TKXChartLayer>();
  Copy->Assign(L);
  EXPECT_EQ(test::Stored(Copy.get()), test::Stored(L));
}

} // namespace
} // namespace kx

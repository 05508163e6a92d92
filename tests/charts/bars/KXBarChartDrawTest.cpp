// Bar charts as pixels: bars fill their rectangles and nothing else, in both orientations;
// hidden, transparent and non-numbers leave nothing; the styles, the custom draw event with
// the shadow, the legend glyph and the value labels; bars narrower than a pixel come out as
// drawing each of them would; bad numbers and crowded groups still give a defined picture.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <vector>

#include "charts/KXChartsTestSupport.h"
#include "kxcharts/charts/bars/KXBarCharts.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

using test::SetRange;
using test::TChartsForm;

using test::CountPixels;
using test::MakeBitmap;
using test::PaintedBounds;
using test::PixelBytes;

constexpr TColor Ink = clRed;

bool IsInk(TColor C) {
  return test::Near(C, Ink, 30);
}

// A red bar chart with a black pen alone on its axes: the index axis shows -0.5..Count-0.5
// on 100 pixels, the value axis -10..10 (a value v at 50 - 5 v when standing, 50 + 5 v when
// lying); bars of 60 %.
class BarsAlone : public testing::Test {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TChartsForm>(nullptr));
    Chart = New<TKXBarChart>(Form.get());
    Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
    Chart->SetColor(Ink);
    Chart->Pen()->SetColor(clBlack);
    Chart->SetBarSizePct(60);
  }
  void Fill(std::initializer_list<double> Numbers) {
    for (double N : Numbers)
      Chart->Values()->Add(N, "");
  }
  TBitmap* Draw(TBarOrientation Orientation = boVertical) {
    Chart->SetOrientation(Orientation);
    const double Last = Chart->Values()->Count() - 0.5;
    const bool Standing = Orientation == boVertical;
    SetRange(Standing ? Chart->HorizontalAxis() : Chart->VerticalAxis(), -0.5, Last);
    SetRange(Standing ? Chart->VerticalAxis() : Chart->HorizontalAxis(), -10, 10);
    Bitmap = MakeBitmap(100, 100);
    Chart->Draw(Bitmap->Canvas(), {0, 0, 100, 100});
    return Bitmap.get();
  }
  int32_t Inked(const TRect& Area) const { return CountPixels(Bitmap.get(), Area, IsInk); }

  TOwned<TChartsForm> Form;
  TKXBarChart* Chart = nullptr;
  TOwned<TBitmap> Bitmap;
};

TEST_F(BarsAlone, BarsFillTheirRectanglesFromTheOriginAndNothingElseInBothOrientations) {
  Fill({6, -4});
  struct TCase {
    TBarOrientation Orientation;
    TRect Up, Down;
  };
  for (const TCase& C : {TCase{boVertical, {10, 20, 40, 50}, {60, 50, 90, 70}},
                         TCase{boHorizontal, {50, 60, 80, 90}, {30, 10, 50, 40}}}) {
    SCOPED_TRACE(C.Orientation);
    const TBitmap* B = Draw(C.Orientation);
    for (const TRect& R : {C.Up, C.Down}) {
      // Filled inside the one-pixel outline.
      const TRect Inside{R.Left + 1, R.Top + 1, R.Right - 1, R.Bottom - 1};
      EXPECT_EQ(Inked(Inside), Inside.Width() * Inside.Height());
      EXPECT_EQ(CountPixels(B, {R.Left, R.Top, R.Right, R.Top + 1},
                            [](TColor P) { return P == clBlack; }),
                R.Width());
    }
    EXPECT_EQ(test::CountPainted(B),
              C.Up.Width() * C.Up.Height() + C.Down.Width() * C.Down.Height());
  }
}

TEST_F(BarsAlone, HiddenTransparentAndNonNumberValuesLeaveNoBar) {
  const double NaN = std::numeric_limits<double>::quiet_NaN();
  const double Inf = std::numeric_limits<double>::infinity();
  Fill({5, 5, 5, NaN, Inf, -Inf, 5});
  Chart->Values()->Items(0)->SetVisible(false);
  Chart->Values()->Items(1)->SetOpacity(0);
  Draw();
  // Seven steps of 100/7 pixels: only the third and the last bar show.
  EXPECT_EQ(Inked({0, 0, 28, 100}), 0);
  EXPECT_GT(Inked({29, 0, 42, 100}), 0);
  EXPECT_EQ(Inked({43, 0, 85, 100}), 0);
  EXPECT_GT(Inked({86, 0, 100, 100}), 0);
}

TEST_F(BarsAlone, BarsNarrowerThanAPixelComeOutAsDrawingEachOfThemWould) {
  // 20,000 bars on 100 pixels, from the origin up and down.
  for (int I = 0; I < 20000; ++I)
    Chart->Values()->Add(9 * std::sin(I * 0.013), "");
  const std::vector<uint8_t> Skipping = PixelBytes(Draw());
  int32_t Calls = 0;
  Chart->SetOnCustomDrawValue(
      [&](TObject*, TCanvas*, const TRect&, const TKXBarChartValue*, bool&) { ++Calls; });
  const std::vector<uint8_t> Each = PixelBytes(Draw());
  EXPECT_EQ(Calls, 20000);
  EXPECT_GT(test::CountPainted(Bitmap.get()), 500);
  EXPECT_EQ(Skipping, Each);
}

TEST_F(BarsAlone, GradientRunsFromThePanelColourToTheBarsAndAnArrowAlwaysPointsUp) {
  Fill({-10});
  Chart->SetBarSizePct(30);
  Chart->SetBarStyle(bsGradient);
  Draw();
  // The bar is (35, 50, 65, 100): light at the top, the bar's colour at the bottom.
  EXPECT_TRUE(IsInk(Bitmap->Canvas()->Pixel(50, 98)));
  EXPECT_FALSE(IsInk(Bitmap->Canvas()->Pixel(50, 51)));
  Chart->SetBarStyle(bsArrow);
  Draw();
  // Bar width 30, arrow thickness 9 (30 % again), shaft 4: the head is at the top, though
  // the value is negative.
  const auto WidthAt = [&](int32_t Y) {
    return CountPixels(Bitmap.get(), {0, Y, 100, Y + 1}, [](TColor C) { return C != clWhite; });
  };
  int32_t Head = 0;
  for (int32_t Y = 50; Y < 62; ++Y)
    Head = std::max(Head, WidthAt(Y));
  EXPECT_GE(Head, 8);
  EXPECT_LE(WidthAt(85), 6);
  EXPECT_GE(WidthAt(85), 2);
  EXPECT_LE(WidthAt(51), 4) << "the tip";
}

TEST_F(BarsAlone, TheImageStyleDrawsTheValuesPictureOrARectangleWithoutOne) {
  Fill({8, 8});
  auto* Images = New<TImageList>(Form.get());
  Images->SetSize(4, 4);
  TOwned<TBitmap> Green = MakeBitmap(4, 4, clLime);
  Images->Add(Green.get());
  Chart->SetImageList(Images);
  Chart->SetBarStyle(bsImage);
  Chart->Values()->Items(0)->SetImageIndex(0);
  Chart->Values()->Items(1)->SetImageIndex(3);
  Draw();
  const auto IsGreen = [](TColor C) { return test::Near(C, clLime, 30); };
  EXPECT_GT(CountPixels(Bitmap.get(), {0, 0, 50, 100}, IsGreen), 100);
  EXPECT_EQ(CountPixels(Bitmap.get(), {50, 0, 100, 100}, IsGreen), 0);
  EXPECT_GT(Inked({50, 0, 100, 100}), 100);
}

TEST_F(BarsAlone, AValueLabelStandsAboveAStandingBar) {
  Chart->Values()->Add(4, "Label");
  Chart->SetOptions(Chart->Options() + coValueLabels);
  Draw();
  // The bar is (20, 30, 80, 50); its label's box, in the bar's colour, stands on its top.
  const TRect Above{0, 0, 100, 30};
  EXPECT_GT(Inked(Above), 20);
  EXPECT_EQ(PaintedBounds(Bitmap.get()).Bottom, 50);
  EXPECT_GE(PaintedBounds(Bitmap.get()).Top, 30 - 2 * Bitmap->Canvas()->TextHeight("W"));
}

TEST_F(BarsAlone, TheGlyphIsTheBarThroughTheEventAndPutsTheCanvasBackWhenItRaises) {
  Fill({3});
  Bitmap = MakeBitmap(20, 20);
  TCanvas* C = Bitmap->Canvas();
  C->Brush()->SetColor(clBlue);
  Chart->DrawGlyph(C, Chart->Values()->Items(0), {2, 2, 18, 18});
  EXPECT_TRUE(IsInk(Bitmap->Canvas()->Pixel(10, 10)));
  EXPECT_EQ(C->Brush()->Color(), clBlue);
  Chart->SetOnCustomDrawValue([](TObject*, TCanvas*, const TRect&, const TKXBarChartValue*, bool&) {
    throw std::runtime_error("handler");
  });
  EXPECT_THROW(Chart->DrawGlyph(C, Chart->Values()->Items(0), {2, 2, 18, 18}), std::runtime_error);
  EXPECT_EQ(C->Brush()->Color(), clBlue);
}

// --- In a panel ---

class BarsPaintedInAPanel : public testing::Test {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TChartsForm>(nullptr));
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetBounds(0, 0, 200, 200);
  }
  TKXBarChart* AddBars(std::initializer_list<double> Numbers) {
    auto* C = New<TKXBarChart>(Form.get());
    C->SetPanel(Panel);
    C->SetOptions(C->Options() - coValueLabels);
    for (double N : Numbers)
      C->Values()->Add(N, "");
    return C;
  }
  TBitmap* Draw() {
    for (TKXChartAxis* A : {Panel->BottomAxis(), Panel->LeftAxis()})
      A->UpdateAxisValues();
    Bitmap = MakeBitmap(100, 100);
    Panel->DrawCharts(Bitmap->Canvas(), {0, 0, 100, 100});
    return Bitmap.get();
  }
  TOwned<TChartsForm> Form;
  TKXChartPanel* Panel = nullptr;
  TOwned<TBitmap> Bitmap;
};

TEST_F(BarsPaintedInAPanel, WithTheShadowShowingTheEventFiresForTheShadowAndForTheBar) {
  auto* C = AddBars({3, 5});
  ASSERT_TRUE(Panel->ChartShadow()->Visible());
  std::vector<TRect> Seen;
  C->SetOnCustomDrawValue(
      [&](TObject*, TCanvas*, const TRect& R, const TKXBarChartValue*, bool& DefaultDraw) {
        Seen.push_back(R);
        DefaultDraw = false;
      });
  Draw();
  ASSERT_EQ(Seen.size(), 4u);
  EXPECT_NE(Seen[0], Seen[1]) << "the shadow's rectangle is shifted";
  EXPECT_EQ(test::CountPainted(Bitmap.get()), 0) << "DefaultDraw false draws nothing";
}

TEST_F(BarsPaintedInAPanel, BadNumbersAndCrowdedGroupsStillGiveADefinedPicture) {
  const double NaN = std::numeric_limits<double>::quiet_NaN();
  const double Inf = std::numeric_limits<double>::infinity();
  AddBars({NaN, Inf, -Inf, 1e308, -1e308, 0, 5});
  auto* Sum0 = AddBars({5, -5, 0, 2, 3, 4, 1});
  // More charts in the group than the plot has pixels, stacked, then to 100 % (where the
  // first index adds up to nothing), then clustered.
  for (int K = 0; K < 150; ++K)
    AddBars({1, -1, 0, 1, 1, 1, 1})->SetBarSizePct(K % 2 ? 0 : -5);
  for (TKXGroupStyle Style : {gsStacked, gsStacked100, gsNone}) {
    SCOPED_TRACE(Style);
    Sum0->SetGroupStyle(Style);
    Sum0->SetClustered(Style == gsNone);
    const std::vector<uint8_t> First = PixelBytes(Draw());
    EXPECT_EQ(PixelBytes(Draw()), First);
  }
}

} // namespace
} // namespace kx

#include "kxcharts/charts/KXPointCharts.h"

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "KXChartsTestSupport.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {
namespace {

using test::CountPixels;
using test::MakeBitmap;
using test::TChartsForm;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Inf = std::numeric_limits<double>::infinity();
constexpr TColor Fill = static_cast<TColor>(0x2040C0);

bool IsFill(TColor C) {
  return test::Near(C, Fill, 6);
}

// A chart of the class alone on axes of 0..10, drawn into 100 x 100 (X = 10 x,
// Y = 100 - 10 y), its points in Fill outlined in black, with no value colours or labels.
template <class TChart> struct TAlone {
  TOwned<TChartsForm> Form{New<TChartsForm>(nullptr)};
  TChart* Chart = New<TChart>(Form.get());
  TAlone() {
    Chart->SetBounds(0, 0, 100, 100);
    Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
    Chart->SetColor(Fill);
    Chart->PointsInfo()->Pen()->SetColor(clBlack);
    test::FixAxes(Chart);
  }
  TOwned<TBitmap> Draw() {
    TOwned<TBitmap> B = MakeBitmap(100, 100);
    Chart->Draw(B->Canvas(), {0, 0, 100, 100});
    return B;
  }
  // The rectangles DrawPoint was given, by caption.
  std::vector<TRect> Rects() {
    std::vector<TRect> Out;
    Chart->SetOnCustomDrawValue(
        [&](TObject*, TCanvas*, const TRect& R, TKXPointChartValue*, bool&) { Out.push_back(R); });
    Draw();
    Chart->SetOnCustomDrawValue(nullptr);
    return Out;
  }
};

// --- Defaults and registration ---

TEST(PointCharts, DefaultsAndTheRegistryOfTheModule) {
  StartChartsModule();
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Point = New<TKXPointChart>(Form.get());
  auto* Scatter = New<TKXScatterChart>(Form.get());
  EXPECT_EQ(Point->Options(), DefaultChartOptions);
  EXPECT_FALSE(Point->EnforceSingleOption());
  EXPECT_FALSE(Point->Values()->Sorted());
  EXPECT_TRUE(Point->LineChartElements().Empty());
  EXPECT_EQ(Point->PointsInfo()->Width(), 10);
  EXPECT_EQ(Scatter->LineChartElements(), TBasicCharts{bcArea});
  EXPECT_EQ(Scatter->LineStyle(), lsSmooth);
  EXPECT_TRUE(Scatter->CloseLine());
  // The chart's colour is its points' brush.
  Point->SetColor(clTeal);
  EXPECT_EQ(Point->PointsInfo()->Brush()->Color(), clTeal);
  EXPECT_EQ(GetChartClass(ctPoint), ClassOf<TKXPointChart>());
  EXPECT_EQ(GetChartClass(ctScatter), ClassOf<TKXScatterChart>());
}

// --- Geometry ---

struct TRectCase {
  const char* Name;
  bool Fixed;
  int32_t W, H;
  double X, Y;
  TRect Expected;
};

TEST(PointCharts, TheRectangleOfAPointInPixelsAndInAxisUnits) {
  const TRectCase Cases[] = {
      {"fixed 10 x 10 at the middle", true, 10, 10, 5, 5, {45, 45, 55, 55}},
      {"fixed 3 x 3: the odd pixel is dropped", true, 3, 3, 2, 8, {19, 19, 21, 21}},
      {"axis units 2 x 4: 20 x 40 pixels", false, 2, 4, 5, 5, {40, 30, 60, 70}},
      {"axis units 1 x 1 at the corner", false, 1, 1, 0, 0, {-5, 95, 5, 105}},
      {"no size", true, 0, 0, 3, 3, {30, 70, 30, 70}},
  };
  for (const TRectCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TAlone<TKXPointChart> A;
    A.Chart->SetFixedSizePoints(C.Fixed);
    A.Chart->PointsInfo()->SetWidth(C.W);
    A.Chart->PointsInfo()->SetHeight(C.H);
    A.Chart->Values()->Add(C.X, C.Y);
    test::FixAxes(A.Chart);
    const std::vector<TRect> Rects = A.Rects();
    ASSERT_EQ(Rects.size(), 1u);
    EXPECT_EQ(Rects[0], C.Expected);
  }
}

TEST(PointCharts, AScaledValueGrowsItsPointAboutTheCentre) {
  TAlone<TKXPointChart> A;
  A.Chart->SetFixedSizePoints(true);
  A.Chart->Values()->Add(5, 5)->SetScale(2.0f);
  const std::vector<TRect> Rects = A.Rects();
  ASSERT_EQ(Rects.size(), 1u);
  EXPECT_EQ(Rects[0], (TRect{40, 40, 60, 60}));
}

struct THitCase {
  const char* Name;
  bool Fixed;
  double SelX, SelY;
  bool Hit;
};

TEST(PointCharts, TheHitTestTakesThePointsExtentToItsEdge) {
  // A point at (5, 5) of 2 x 2 axis units, or of 20 x 20 pixels on 10 pixels per unit:
  // either way it reaches from 4 to 6.
  const THitCase Cases[] = {
      {"the centre", false, 5, 5, true},       {"the right edge", false, 6, 5, true},
      {"past the right edge", false, 6.01, 5, false}, {"the corner", false, 4, 4, true},
      {"pixels: the top edge", true, 5, 6, true}, {"pixels: past the top", true, 5, 6.01, false},
  };
  for (const THitCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TAlone<TKXPointChart> A;
    A.Chart->SetFixedSizePoints(C.Fixed);
    A.Chart->PointsInfo()->SetWidth(C.Fixed ? 20 : 2);
    A.Chart->PointsInfo()->SetHeight(C.Fixed ? 20 : 2);
    TKXPointChartValue* V = A.Chart->Values()->Add(5, 5);
    test::FixAxes(A.Chart);
    EXPECT_EQ(V->Selectable(KXRect(C.SelX, C.SelY, C.SelX, C.SelY), saSelect), C.Hit);
  }
  // Without a chart a value is a point: 4.5 is beside it.
  auto Loose = MakeOwned<TKXPointChartValues>(nullptr, ClassOf<TKXPointChartValue>());
  TKXPointChartValue* V = Loose->Add(5, 5);
  EXPECT_TRUE(V->Selectable(KXRect(5, 5, 5, 5), saSelect));
  EXPECT_FALSE(V->Selectable(KXRect(4.5, 5, 4.5, 5), saSelect));
}

TEST(PointCharts, TheRangeHoldsThePointsWholeAndFollowsTheirSize) {
  TAlone<TKXPointChart> A;
  A.Chart->Values()->Add(0, 10);
  A.Chart->Values()->Add(20, 30);
  TKXPointChartValues* V = A.Chart->Values();
  EXPECT_DOUBLE_EQ(V->MinValue(0), -5);
  EXPECT_DOUBLE_EQ(V->MaxValue(0), 25);
  EXPECT_DOUBLE_EQ(V->MaxValue(1), 35);
  A.Chart->PointsInfo()->SetHeight(4);
  EXPECT_DOUBLE_EQ(V->MinValue(1), 8) << "a new point size is a new range";
  EXPECT_DOUBLE_EQ(V->MaxValue(0), 25);
  // Without a chart: 10 on every side.
  auto Loose = MakeOwned<TKXPointChartValues>(nullptr, ClassOf<TKXPointChartValue>());
  Loose->Add(1, 2);
  EXPECT_DOUBLE_EQ(Loose->MinValue(0), -9);
  EXPECT_DOUBLE_EQ(Loose->MaxValue(1), 12);
}

// --- Drawing ---

TEST(PointCharts, OneValueDrawsOnePointAndAHiddenPointsInfoNothing) {
  TAlone<TKXPointChart> A;
  A.Chart->SetFixedSizePoints(true);
  A.Chart->Values()->Add(5, 5);
  auto B = A.Draw();
  EXPECT_TRUE(IsFill(B->Canvas()->Pixel(50, 50)));
  EXPECT_EQ(test::PaintedBounds(B.get()), (TRect{45, 45, 55, 55}));
  A.Chart->PointsInfo()->SetVisible(false);
  EXPECT_EQ(test::CountPainted(A.Draw().get()), 0);
}

TEST(PointCharts, TheEventCanTakeOverAPointAndItsLabel) {
  TAlone<TKXPointChart> A;
  A.Chart->SetFixedSizePoints(true);
  A.Chart->SetOptions(A.Chart->Options() + coValueLabels);
  A.Chart->Values()->Add(3, 5, "Label");
  A.Chart->Values()->Add(7, 5);
  A.Chart->SetOnCustomDrawValue([](TObject*, TCanvas*, const TRect&, TKXPointChartValue* V,
                                   bool& DefaultDraw) { DefaultDraw = V->X() != 3; });
  auto B = A.Draw();
  EXPECT_FALSE(IsFill(B->Canvas()->Pixel(30, 50)));
  EXPECT_TRUE(IsFill(B->Canvas()->Pixel(70, 50)));
  EXPECT_EQ(CountPixels(B.get(), {0, 0, 60, 45}, [](TColor C) { return C != clWhite; }), 0)
      << "no label above the point left out";
}

TEST(PointCharts, ALabelStandsAboveItsPointsCentreByOneLetter) {
  TAlone<TKXPointChart> A;
  A.Chart->SetFixedSizePoints(true);
  A.Chart->SetOptions(A.Chart->Options() + coValueLabels);
  A.Chart->Values()->Add(5, 2, "Wide label");
  auto B = A.Draw();
  const TRect Text = test::PaintedBounds(B.get());
  // The point spans rows 75..84; the label's box ends above the centre (row 80) by a line.
  EXPECT_LT(Text.Top, 75 - 5);
  EXPECT_GT(Text.Right - Text.Left, 30) << "the label is wider than the point";
}

// Counts the points drawn one by one (a stamp is one of them).
class TCountingPointChart : public TKXPointChart {
  KX_CLASS(TCountingPointChart, TKXPointChart)

public:
  using TKXPointChart::TKXPointChart;
  int32_t Drawn = 0;
  void DrawPoint(TCanvas* Canvas, const TRect& ARect, TKXPointChartValue* Value) override {
    ++Drawn;
    TKXPointChart::DrawPoint(Canvas, ARect, Value);
  }
};

// The pictures of a cloud drawn with stamps and point by point (an event handler that
// changes nothing forces the latter) are the same, pixel for pixel, on top of the lines.
TEST(PointCharts, StampedPointsGiveThePictureOfDrawingEveryPoint) {
  struct TCase {
    const char* Name;
    TKXShapeStyle Style;
    int32_t Size;
    bool Line;
    bool Shadow;
  };
  const TCase Cases[] = {{"3-pixel rectangles", shpRectangle, 3, false, false},
                         {"9-pixel rectangles over a line", shpRectangle, 9, true, false},
                         {"raised 3D rectangles", shpRectangle3D, 8, false, false},
                         {"rectangles with the panel's shadow", shpRectangle, 6, false, true}};
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
    auto* Panel = New<TKXChartPanel>(Form.get());
    Panel->SetBounds(0, 0, 300, 200);
    Panel->ChartShadow()->SetVisible(C.Shadow);
    auto* Chart = New<TCountingPointChart>(Form.get());
    Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
    Chart->SetFixedSizePoints(true);
    Chart->PointsInfo()->SetStyle(C.Style);
    Chart->PointsInfo()->SetWidth(C.Size);
    Chart->PointsInfo()->SetHeight(C.Size);
    Chart->PointsInfo()->Pen()->SetColor(clNavy);
    if (C.Line) Chart->SetLineChartElements({bcLine});
    Chart->SetPanel(Panel);
    std::mt19937 Random(7);
    std::normal_distribution<double> Step(0.0, 1.0);
    double Y = 0;
    Chart->Values()->BeginUpdate();
    for (int I = 0; I < 3000; ++I)
      Chart->Values()->Add(I % 700 + Step(Random), Y += Step(Random));
    // One selected value in the middle breaks the run in two.
    Chart->Values()->Items(1500)->SetSelected(true);
    Chart->Values()->EndUpdate();
    for (TKXChartAxis* Axis : {Panel->BottomAxis(), Panel->LeftAxis()})
      Axis->UpdateAxisValues();
    const TRect Plot{10, 10, 290, 190};
    auto Stamped = MakeBitmap(300, 200);
    Panel->DrawCharts(Stamped->Canvas(), Plot);
    EXPECT_LT(Chart->Drawn, 10) << "the runs were stamped";
    Chart->SetOnCustomDrawValue([](TObject*, TCanvas*, const TRect&, TKXPointChartValue*, bool&) {});
    auto Each = MakeBitmap(300, 200);
    Panel->DrawCharts(Each->Canvas(), Plot);
    EXPECT_GT(test::CountPainted(Each.get()), 5000);
    EXPECT_GT(Chart->Drawn, 3000) << "every point was drawn";
    const test::TPictureDifference D = test::ComparePictures(Stamped.get(), Each.get());
    EXPECT_EQ(D.Pixels, 0) << "first at " << D.First.X << ", " << D.First.Y;
  }
}

TEST(PointCharts, BadNumbersDrawNothingAwayFromTheirPlace) {
  TAlone<TKXPointChart> A;
  A.Chart->SetFixedSizePoints(true);
  for (double X : {NaN, Inf, -Inf, 1e308, -1e308})
    A.Chart->Values()->Add(X, 5);
  A.Chart->Values()->Add(5, NaN);
  A.Chart->Values()->Add(5, 5);
  A.Chart->SetLineChartElements({bcLine});
  auto B = A.Draw();
  // The one good point is drawn; the others have no place on the plot and the line does not
  // run to a far edge for them.
  EXPECT_TRUE(IsFill(B->Canvas()->Pixel(50, 50)));
  EXPECT_EQ(CountPixels(B.get(), {0, 0, 100, 40}, [](TColor C) { return C != clWhite; }), 0);
  EXPECT_EQ(CountPixels(B.get(), {0, 60, 100, 100}, [](TColor C) { return C != clWhite; }), 0);
}

// --- Image list ---

TEST(PointCharts, AnImageListSizesThePointsAndLeavesTheChartWhenFreed) {
  TAlone<TKXPointChart> A;
  auto* Images = New<TImageList>(A.Form.get());
  Images->SetSize(12, 7);
  A.Chart->SetImageList(Images);
  EXPECT_EQ(A.Chart->PointsInfo()->Width(), 12);
  EXPECT_EQ(A.Chart->PointsInfo()->Height(), 7);
  Images->Free();
  EXPECT_EQ(A.Chart->ImageList(), nullptr);
  A.Chart->Values()->Add(5, 5, "", TColor(-1), 0);
  A.Chart->PointsInfo()->SetStyle(shpImage);
  EXPECT_GT(test::CountPainted(A.Draw().get()), 0) << "without a list the default style draws";
}

// --- Scatter ---

TEST(ScatterCharts, FillsThePolygonOnceAndLeavesOutValuesWithoutAPlace) {
  TAlone<TKXScatterChart> A;
  A.Chart->SetLineStyle(lsStraight);
  A.Chart->PointsInfo()->SetVisible(false);
  for (const auto& [X, Y] : std::vector<std::pair<double, double>>{{2, 2}, {8, 2}, {NaN, 5}, {8, 8}, {2, 8}})
    A.Chart->Values()->Add(X, Y);
  auto B = A.Draw();
  EXPECT_TRUE(IsFill(B->Canvas()->Pixel(50, 50)));
  EXPECT_EQ(test::PaintedBounds(B.get()), (TRect{20, 20, 81, 81}));
  // No elements: neither fill nor line, only the points.
  A.Chart->SetLineChartElements({});
  A.Chart->PointsInfo()->SetVisible(true);
  A.Chart->SetFixedSizePoints(true);
  auto P = A.Draw();
  EXPECT_FALSE(IsFill(P->Canvas()->Pixel(50, 50)));
  EXPECT_TRUE(IsFill(P->Canvas()->Pixel(20, 80)));
}

// --- Streaming ---

TEST(PointCharts, AChartComesBackFromItsStoredForm) {
  StartChartsModule();
  RegisterClasses({ClassOf<TChartsForm>()});
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  Form->SetName("Form1");
  auto* Scatter = New<TKXScatterChart>(Form.get());
  Scatter->SetName("Scatter1");
  Scatter->SetFixedSizePoints(true);
  Scatter->PointsInfo()->SetStyle(shpStar);
  Scatter->Values()->Add(1, 2, "a");
  Scatter->Values()->Add(3, 4, "b", TColor(-1), 2);
  const std::string Json = SaveFormToString(Form.get());
  EXPECT_EQ(Json.find("LineStyle"), std::string::npos) << "the scatter default is not written";

  TOwned<TChartsForm> Copy(New<TChartsForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  EXPECT_EQ(SaveFormToString(Copy.get()), Json);
  auto* Back = static_cast<TKXScatterChart*>(Copy->FindComponent("Scatter1"));
  ASSERT_NE(Back, nullptr);
  EXPECT_TRUE(Back->FixedSizePoints());
  EXPECT_EQ(Back->PointsInfo()->Style(), shpStar);
  EXPECT_EQ(Back->Values()->Items(1)->ImageIndex(), 2);
}

} // namespace
} // namespace kx

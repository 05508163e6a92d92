#include "kxcharts/charts/KXLineCharts.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "KXChartsTestSupport.h"
#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXTestSupport.h"

#include <nlohmann/json.hpp>

namespace kx {
namespace {

using test::ChartAlone;
using test::CountPixels;
using test::TChartsForm;
using test::TDrawnSegment;
using test::TRecAreaChart;
using test::TRecLineChart;

using Points = TCanvasPoints;
using test::Inf;
using test::NaN;

using LineAlone = ChartAlone<TRecLineChart>;
using AreaAlone = ChartAlone<TRecAreaChart>;

std::vector<Points> PointsOf(const std::vector<TDrawnSegment>& Segments) {
  std::vector<Points> R;
  for (const TDrawnSegment& S : Segments)
    R.push_back(S.Points);
  return R;
}

// --- Construction, options, colours ---

TEST(LineCharts, DefaultsOfTheLineAndTheAreaChart) {
  StartChartsModule();
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Line = New<TKXLineChart>(Form.get());
  auto* Area = New<TKXAreaChart>(Form.get());
  EXPECT_EQ(Line->Options(), TChartOptions::FromBits(1939));
  EXPECT_EQ(Area->Options(), TChartOptions::FromBits(1811));
  EXPECT_EQ(Line->LineChartElements(), TBasicCharts{bcLine});
  EXPECT_EQ(Area->LineChartElements(), TBasicCharts{bcArea});
  EXPECT_EQ(Line->Pen()->Width(), 2);
  EXPECT_TRUE(Is<TKXLineChartPen>(Line->Pen()));
  EXPECT_TRUE(Line->Values()->Sorted());
  EXPECT_EQ(GetChartClass(ctLine), ClassOf<TKXLineChart>());
  EXPECT_EQ(GetChartClass(ctArea), ClassOf<TKXAreaChart>());
  EXPECT_EQ(GetChartClass(ctCustom), ClassOf<TKXChart>());
}

TEST(LineCharts, EnforceSingleOptionKeepsTheReservedFlagOut) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Line = New<TKXLineChart>(Form.get());
  Line->SetOptions(TChartOptions::FromBits(1815));
  EXPECT_FALSE(Line->Options().Contains(coReservedFlag));
  EXPECT_EQ(Line->Options(), TChartOptions::FromBits(1811));
  Line->SetEnforceSingleOption(false);
  Line->SetOptions(TChartOptions::FromBits(1815));
  EXPECT_TRUE(Line->Options().Contains(coReservedFlag));
}

TEST(LineCharts, TheLineChartsColourIsItsPensTheAreaChartsItsBrushs) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  ColorListIndex = 3;
  auto* Line = New<TKXLineChart>(Form.get());
  EXPECT_EQ(Line->Color(), DefaultColorList[3]);
  const TColor Brush = Line->Brush()->Color();
  int Changes = 0;
  Line->SetOnChange([&](TObject*) { ++Changes; });
  Line->SetColor(clRed);
  Line->SetColor(clRed);
  EXPECT_EQ(Line->Pen()->Color(), clRed);
  EXPECT_EQ(Line->Brush()->Color(), Brush);
  EXPECT_EQ(Changes, 1);
  auto* Area = New<TKXAreaChart>(Form.get());
  Area->SetColor(clGreen);
  EXPECT_EQ(Area->Brush()->Color(), clGreen);
  EXPECT_NE(Area->Pen()->Color(), clGreen);
}

TEST(LineCharts, ValuesStayInRisingXWhateverOrderTheyCome) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Line = New<TKXLineChart>(Form.get());
  for (double X : {5.0, 1.0, 9.0, 3.0, 3.0, 7.0})
    Line->Values()->Add(X, X * 10);
  std::vector<double> Xs;
  for (TKX2DChartValue* V : *Line->Values())
    Xs.push_back(V->X());
  EXPECT_EQ(Xs, (std::vector<double>{1, 3, 3, 5, 7, 9}));
}

TEST(LineCharts, PreviewShowsFiveNamedValuesThatAreNotStored) {
  StartChartsModule();
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  Form->SetName("Form1");
  RegisterClasses({ClassOf<TChartsForm>()});
  auto* Line = New<TKXLineChart>(Form.get());
  Line->SetName("Line1");
  Line->SetPreview(true);
  ASSERT_EQ(Line->Values()->Count(), 5);
  EXPECT_TRUE(Line->Preview());
  EXPECT_EQ(Line->Values()->Items(4)->Caption(), "Development");
  EXPECT_EQ(Line->Values()->Items(4)->X(), 400.0);
  const std::string Json = SaveFormToString(Form.get());
  EXPECT_EQ(Json.find("Research"), std::string::npos) << Json;
  // Defaults are not written: the pen's width 2 and the options 1939.
  const size_t Pen = Json.find("\"Pen\"");
  ASSERT_NE(Pen, std::string::npos);
  EXPECT_EQ(Json.substr(Pen, Json.find('}', Pen) - Pen).find("Width"), std::string::npos) << Json;
  // The chart's own options only: its stored local axes write theirs, which have no default.
  const auto Stored = nlohmann::ordered_json::parse(Json)["Form"]["Components"][0];
  EXPECT_FALSE(Stored.contains("Options")) << Json;
  // Real values and settings round trip.
  Line->SetLineStyle(lsStepVertical);
  Line->Values()->Clear();
  Line->Values()->SetDateTimeAxes(TXYSet{xyX});
  Line->Values()->Add(45000.5, -2, "a");
  const std::string Real = SaveFormToString(Form.get());
  test::ExpectStored(Real, {"LineStyle", "DateTimeAxes", "Values"});
  TOwned<TChartsForm> Copy(New<TChartsForm>(nullptr));
  LoadFormFromString(Copy.get(), Real);
  EXPECT_EQ(SaveFormToString(Copy.get()), Real);
  EXPECT_EQ(static_cast<TKXLineChart*>(Copy->FindComponent("Line1"))->Pen()->Width(), 2);
}

// --- Segment geometry ---

TEST(LineCharts, SegmentPointsForEachStyleWithAndWithoutTheArea) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* C = New<TKXLineChart>(Form.get());
  const TRect R{0, 0, 100, 80};
  const TPoint P{10, 20}, Q{30, 50};
  struct TCase {
    TLineChartStyle Style;
    bool Area;
    Points Expected;
  };
  const TCase Cases[] = {
      {lsStraight, false, {P, Q}},
      {lsStepHorizontal, false, {P, {30, 20}, Q}},
      {lsStepVertical, false, {P, {10, 50}, Q}},
      {lsSmooth, false, {P, Q}},
      {lsBezier, false, {P, Q}},
      {lsStraight, true, {{10, 80}, P, Q, {30, 80}}},
      {lsStepHorizontal, true, {{10, 80}, P, {30, 20}, Q, {30, 80}}},
      {lsStepVertical, true, {{10, 80}, P, {10, 50}, Q, {30, 80}}},
  };
  Points Got;
  for (const TCase& K : Cases) {
    C->SetLineStyle(K.Style);
    C->SetLineChartElements(K.Area ? TBasicCharts{bcArea} : TBasicCharts{bcLine});
    C->GetPoints(P, Q, R, Got);
    EXPECT_EQ(Got, K.Expected) << "style " << int(K.Style) << " area " << K.Area;
  }
}

// One segment per value, the first from the first value to itself; a hidden or transparent
// value breaks the segment ending at it only.
TEST_F(LineAlone, StraightLineHandsOneSegmentPerValueAndAHiddenValueBreaksOne) {
  AddValues({{1, 1}, {5, 5}, {9, 2}});
  Draw();
  EXPECT_EQ(
      PointsOf(Chart->Log.Segments),
      (std::vector<Points>{{{10, 90}, {10, 90}}, {{10, 90}, {50, 50}}, {{50, 50}, {90, 80}}}));
  for (bool Hidden : {true, false}) {
    Chart->Values()->Clear();
    AddValues({{1, 1}, {3, 3}, {5, 5}, {7, 3}});
    if (Hidden)
      Chart->Values()->Items(2)->SetVisible(false);
    else
      Chart->Values()->Items(2)->SetOpacity(0);
    Draw();
    EXPECT_EQ(
        PointsOf(Chart->Log.Segments),
        (std::vector<Points>{{{10, 90}, {10, 90}}, {{10, 90}, {30, 70}}, {{50, 50}, {70, 70}}}));
  }
}

TEST_F(LineAlone, ANumberThatIsNoneBreaksTheLineOnBothSidesAndPaintsNothingWild) {
  AddValues({{1, 1}, {3, 3}, {5, 5}, {7, 3}, {9, 4}});
  Chart->Values()->Items(2)->SetY(NaN);
  Chart->Values()->Items(3)->SetY(Inf);
  Chart->HorizontalAxis()->SetOptions(Chart->HorizontalAxis()->Options() + aoAutoMinimum +
                                      aoAutoMaximum);
  Chart->VerticalAxis()->SetOptions(Chart->VerticalAxis()->Options() + aoAutoMinimum +
                                    aoAutoMaximum);
  Chart->HorizontalAxis()->UpdateAxisValues();
  Chart->VerticalAxis()->UpdateAxisValues();
  // The range ignores the bad numbers: 1..4 in Y.
  EXPECT_EQ(Chart->VerticalAxis()->Maximum(), 4.0);
  Chart->Pen()->SetWidth(3);
  TBitmap* B = Draw();
  // First, second (from 1 to 3), then only a fresh start at the last value.
  ASSERT_EQ(Chart->Log.Segments.size(), 3u);
  EXPECT_EQ(Chart->Log.Segments[2].Points[0], Chart->Log.Segments[2].Points[1]);
  // Nothing near the top-left corner or the top edge, where a bad number would go.
  EXPECT_EQ(CountPixels(B, {0, 0, 100, 3}, [](TColor C) { return C != clWhite; }), 0);
  for (TLineChartStyle S : {lsSmooth, lsBezier}) {
    Chart->SetLineStyle(S);
    B = Draw();
    EXPECT_EQ(CountPixels(B, {0, 0, 100, 3}, [](TColor C) { return C != clWhite; }), 0);
    EXPECT_GT(test::CountPainted(B), 0);
  }
}

TEST_F(LineAlone, OneValueDrawsNothingAndNoLabel) {
  Chart->SetOptions(Chart->Options() + coValueLabels);
  Chart->Values()->Add(5, 5, "only");
  TBitmap* B = Draw();
  EXPECT_TRUE(Chart->Log.Segments.empty());
  EXPECT_TRUE(Chart->Log.Labels.empty());
  EXPECT_EQ(test::CountPainted(B), 0);
}

TEST_F(LineAlone, AZoomedChartWalksOnlyTheValuesInViewAndOneBeyondEachEdge) {
  for (int X = 0; X < 10; ++X)
    Chart->Values()->Add(X, X % 3);
  Chart->HorizontalAxis()->SetZoomMinimum(3);
  Chart->HorizontalAxis()->SetZoomMaximum(6);
  EXPECT_EQ(Chart->FirstIndex(), 2);
  EXPECT_EQ(Chart->LastIndex(), 7);
  Draw();
  ASSERT_EQ(Chart->Log.Segments.size(), 6u);
  // Value 2 starts the walk at X = 2 on a view of 3..6: -33 pixels, off the rectangle.
  EXPECT_EQ(Chart->Log.Segments.front().Points[0].X, Chart->HorizontalAxis()->AxisToPixel(2, Rect));
  EXPECT_EQ(Chart->Log.Segments.back().Points[1].X, Chart->HorizontalAxis()->AxisToPixel(7, Rect));
}

TEST_F(LineAlone, SegmentColoursFollowSelectionAndValueColours) {
  AddValues({{1, 5}, {3, 5}, {5, 5}, {7, 5}});
  Chart->Values()->Items(1)->SetColor(clLime);
  Chart->Values()->Items(2)->SetSelected(true);
  Chart->SetSelectionColor(clFuchsia);
  TBitmap* B = Draw();
  ASSERT_EQ(Chart->Log.Segments.size(), 4u);
  EXPECT_EQ(Chart->Log.Segments[1].Pen, clBlack);
  EXPECT_EQ(Chart->Log.Segments[2].Pen, clFuchsia);
  // Joined runs are stroked in the pen they were drawn with.
  EXPECT_EQ(B->Canvas()->Pixel(20, 50), clBlack);
  EXPECT_EQ(B->Canvas()->Pixel(40, 50), clFuchsia);
  EXPECT_EQ(B->Canvas()->Pixel(60, 50), clBlack);
  Chart->SetOptions(Chart->Options() + coValueColors);
  B = Draw();
  EXPECT_EQ(Chart->Log.Segments[1].Pen, clLime);
  EXPECT_EQ(B->Canvas()->Pixel(20, 50), clLime);
  EXPECT_EQ(B->Canvas()->Pixel(40, 50), clFuchsia);
}

TEST_F(LineAlone, LabelsStandATextHeightAboveTheirValues) {
  Chart->SetOptions(Chart->Options() + coValueLabels);
  Chart->Values()->Add(1, 1, "a");
  Chart->Values()->Add(5, 5, "b");
  Draw();
  const int32_t H = Bitmap->Canvas()->TextHeight("W");
  EXPECT_EQ(Chart->Log.Labels, (std::vector<std::string>{"a@10," + std::to_string(90 - H),
                                                         "b@50," + std::to_string(50 - H)}));
  // No element at all: the first value still places its label.
  Chart->SetLineChartElements({});
  Draw();
  EXPECT_EQ(Chart->Log.Labels.size(), 1u);
  Chart->SetLineStyle(lsSmooth);
  Draw();
  EXPECT_TRUE(Chart->Log.Labels.empty());
  EXPECT_TRUE(Chart->Log.Segments.empty());
}

// --- Areas ---

TEST_F(AreaAlone, AreasArePolygonsDownToTheBottomOfTheRectangle) {
  AddValues({{1, 5}, {5, 7}, {9, 5}});
  Draw();
  const auto& S = Chart->Log.Segments;
  ASSERT_EQ(S.size(), 3u);
  // The first value draws the left edge as a line from the baseline.
  EXPECT_FALSE(S[0].Fill);
  EXPECT_EQ(S[0].Points, (Points{{10, 100}, {10, 50}, {10, 50}, {10, 100}}));
  EXPECT_TRUE(S[1].Fill);
  EXPECT_EQ(S[1].Points, (Points{{10, 100}, {10, 50}, {50, 30}, {50, 100}}));
  Chart->SetLineStyle(lsStepVertical);
  Draw();
  EXPECT_EQ(Chart->Log.Segments[2].Points,
            (Points{{50, 100}, {50, 30}, {50, 50}, {90, 50}, {90, 100}}));
  // With both elements only areas are drawn after the first value.
  Chart->SetLineChartElements({bcLine, bcArea});
  Draw();
  EXPECT_EQ(Chart->Log.Segments.size(), 3u);
  EXPECT_TRUE(Chart->Log.Segments[1].Fill && Chart->Log.Segments[2].Fill);
}

TEST_F(AreaAlone, AnOriginTheVerticalAxisShowsInsideItsRangeIsTheBaseline) {
  AddValues({{1, 5}, {5, 7}});
  TKXAxisGrid* Grid = Chart->VerticalAxis()->Grid();
  struct TCase {
    double Origin;
    bool OriginOption;
    int32_t Baseline;
  } const Cases[] = {
      {2.5, true, 75},   // strictly inside 0..10: the origin's pixel
      {0.0, true, 100},  // on the range's end: not shown, the bottom of the plot
      {10.0, true, 100}, // likewise at the top end
      {2.5, false, 100}, // the origin line switched off
  };
  for (const TCase& K : Cases) {
    Grid->SetOrigin(K.Origin);
    Grid->SetDrawOptions(K.OriginOption ? TAxisDrawGridOptions{agoTicks, agoOrigin}
                                        : TAxisDrawGridOptions{agoTicks});
    Draw();
    ASSERT_EQ(Chart->Log.Segments.size(), 2u);
    EXPECT_EQ(Chart->Log.Segments[1].Points,
              (Points{{10, K.Baseline}, {10, 50}, {50, 30}, {50, K.Baseline}}))
        << "origin " << K.Origin << " option " << K.OriginOption;
  }
}

TEST_F(AreaAlone, TheFillCoversTheRegionUnderTheLineAndNothingAbove) {
  Chart->SetColor(clBlue);
  Chart->Pen()->SetColor(clRed);
  AddValues({{1, 5}, {9, 5}});
  TBitmap* B = Draw();
  TCanvas* C = B->Canvas();
  EXPECT_EQ(C->Pixel(50, 50), clRed); // the outline on the line's row
  EXPECT_EQ(C->Pixel(50, 45), clWhite);
  EXPECT_EQ(C->Pixel(5, 75), clWhite);
  EXPECT_EQ(C->Pixel(95, 75), clWhite);
  // Every pixel strictly inside the polygon is filled.
  EXPECT_EQ(CountPixels(B, {11, 51, 89, 99}, [](TColor P) { return P != clBlue; }), 0);
}

// --- Pixels of lines ---

// Drawn in one joined path or segment by segment, an axis-aligned line has the same pixels:
// those of the segments the chart hands over.
TEST_F(LineAlone, JoiningSegmentsChangesNoPixelOfAnAxisAlignedLine) {
  Chart->Pen()->SetColor(clRed);
  for (TLineChartStyle Style : {lsStraight, lsStepHorizontal, lsStepVertical}) {
    Chart->Values()->Clear();
    Chart->SetLineStyle(Style);
    if (Style == lsStraight)
      AddValues({{1, 5}, {9, 5}, {9, 9}});
    else
      AddValues({{1, 2}, {3, 6}, {5, 4}, {7, 9}, {9, 1}});
    const auto Joined = test::PixelBytes(Draw());
    TOwned<TBitmap> Apart = test::MakeBitmap(100, 100);
    Apart->Canvas()->Pen()->SetColor(clRed);
    for (const TDrawnSegment& S : Chart->Log.Segments)
      Apart->Canvas()->Polyline(S.Points);
    EXPECT_EQ(test::PixelBytes(Apart.get()), Joined) << "style " << int(Style);
  }
}

// --- Curves ---

TEST_F(LineAlone, SmoothPiecesRunFromValueToValueOnePerValue) {
  AddValues({{1, 1}, {3, 6}, {5, 2}, {7, 8}, {9, 3}});
  Chart->SetLineStyle(lsSmooth);
  Draw();
  const auto& S = Chart->Log.Segments;
  ASSERT_EQ(S.size(), 5u);
  EXPECT_EQ(S[0].Points, (Points{{10, 90}}));
  for (size_t I = 1; I < S.size(); ++I) {
    EXPECT_EQ(S[I].Points.front(), S[I - 1].Points.back());
    EXPECT_EQ(S[I].Points.back(), Chart->GetValuePoint(Chart->Values()->Items(int32_t(I)), Rect));
    EXPECT_GT(S[I].Points.size(), 2u);
  }
  // A selected value colours its piece; in this style the pen keeps that colour after it.
  Chart->SetSelectionColor(clFuchsia);
  Chart->Values()->Items(2)->SetSelected(true);
  Draw();
  EXPECT_EQ(S[1].Pen, clBlack);
  EXPECT_EQ(S[2].Pen, clFuchsia);
  EXPECT_EQ(S[3].Pen, clFuchsia);
}

TEST_F(LineAlone, BezierIsOneCurveThatIgnoresValueLooks) {
  Chart->Pen()->SetColor(clRed);
  AddValues({{1, 5}, {5, 5}, {9, 5}});
  Chart->SetLineStyle(lsBezier);
  Chart->Values()->Items(1)->SetVisible(false);
  Chart->Values()->Items(1)->SetSelected(true);
  TBitmap* B = Draw();
  EXPECT_TRUE(Chart->Log.Segments.empty());
  // Collinear points: the curve is the straight line through them, hidden value or not.
  EXPECT_EQ(B->Canvas()->Pixel(50, 50), clRed);
  EXPECT_EQ(B->Canvas()->Pixel(30, 50), clRed);
}

TEST_F(LineAlone, CurvesTakeANeighbourOnEachSideOfANarrowView) {
  for (int X = 0; X < 10; ++X)
    Chart->Values()->Add(X, 5);
  Chart->HorizontalAxis()->SetZoomMinimum(4.2);
  Chart->HorizontalAxis()->SetZoomMaximum(4.8);
  ASSERT_EQ(Chart->LastIndex() - Chart->FirstIndex(), 1);
  int32_t First = 0, Last = 0;
  const Points P = Chart->BuildPoints(Rect, First, Last);
  EXPECT_EQ(First, 3);
  EXPECT_EQ(Last, 6);
  EXPECT_EQ(P.size(), 4u);
}

// --- Shadow pass, stacking and the panel ---

class LineInPanel : public testing::Test {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TChartsForm>(nullptr));
    Panel = New<TKXChartPanel>(Form.get());
    Panel->ChartShadow()->Pen()->SetColor(clGray);
    Panel->ChartShadow()->Brush()->SetColor(clSilver);
  }
  TRecLineChart* AddChart(std::initializer_list<std::pair<double, double>> XY) {
    auto* C = New<TRecLineChart>(Form.get());
    C->SetPanel(Panel);
    C->SetOptions(C->Options() - coValueColors);
    C->Pen()->SetColor(clBlack);
    for (const auto& [X, Y] : XY)
      C->Values()->Add(X, Y, "v");
    return C;
  }
  void Paint() {
    for (TKXChartAxis* A : {Panel->BottomAxis(), Panel->LeftAxis()})
      A->UpdateAxisValues();
    Bitmap = test::MakeBitmap(120, 120);
    Panel->DrawCharts(Bitmap->Canvas(), Rect);
  }
  const TRect Rect{10, 10, 110, 110};
  TOwned<TChartsForm> Form;
  TKXChartPanel* Panel = nullptr;
  TOwned<TBitmap> Bitmap;
};

TEST_F(LineInPanel, TheShadowPassDrawsEverySegmentShiftedInTheShadowsPenWithoutLabels) {
  TRecLineChart* C = AddChart({{0, 0}, {5, 10}, {10, 5}});
  C->Values()->Items(1)->SetSelected(true);
  Paint();
  const auto& S = C->Log.Segments;
  ASSERT_EQ(S.size(), 6u);
  const int32_t Offset = Panel->ChartShadow()->Size();
  for (size_t I = 0; I < 3; ++I) {
    EXPECT_EQ(S[I].Pen, clGray) << I;
    for (size_t K = 0; K < S[I].Points.size(); ++K)
      EXPECT_EQ(S[I].Points[K],
                (TPoint{S[I + 3].Points[K].X + Offset, S[I + 3].Points[K].Y + Offset}));
  }
  EXPECT_EQ(S[4].Pen, C->SelectionColor());
  EXPECT_EQ(C->Log.Labels.size(), 3u);
  C->SetOptions(C->Options() + coNoChartShadow);
  C->Log.Clear();
  Paint();
  EXPECT_EQ(C->Log.Segments.size(), 3u);
  Panel->ChartShadow()->SetVisible(false);
  C->SetOptions(C->Options() - coNoChartShadow);
  C->Log.Clear();
  Paint();
  EXPECT_EQ(C->Log.Segments.size(), 3u);
}

TEST_F(LineInPanel, AStackedChartIsShiftedUpByTheTopOfTheChartBelow) {
  Panel->ChartShadow()->SetVisible(false);
  TRecLineChart* Low = AddChart({{0, 1}, {10, 4}});
  TRecLineChart* High = AddChart({{0, 2}, {10, 2}});
  Low->SetGroupStyle(gsStacked);
  Paint();
  ASSERT_EQ(Panel->LeftAxis()->Maximum(), 6.0);
  // High's Y of 2 stands at 6 on an axis of 1..6: the top of the rectangle.
  EXPECT_EQ(High->Log.Segments.back().Points.back(), (TPoint{110, 10}));
  EXPECT_EQ(Low->Log.Segments.back().Points.back(),
            (TPoint{110, Panel->LeftAxis()->AxisToPixel(4, Rect)}));
}

// --- Selection ---

TEST_F(LineAlone, SelectionHitsPointsNotTheSegmentsBetween) {
  AddValues({{2, 2}, {5, 8}, {8, 2}});
  // (5, 8) lies at pixel (50, 20) of the chart's 100 x 100 client area.
  EXPECT_TRUE(Chart->IsSelectable({45, 15, 55, 25}));
  // The middle of the segment from (2, 2) to (5, 8) is no hit.
  EXPECT_FALSE(Chart->IsSelectable({33, 48, 37, 52}));
  Chart->Select({45, 15, 55, 25}, saSelect);
  EXPECT_EQ(Chart->Values()->SelCount(), 1);
  EXPECT_TRUE(Chart->Values()->Items(1)->Selected());
}

} // namespace
} // namespace kx

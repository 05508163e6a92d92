#include "kxcharts/charts/KXArrowCharts.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KXChartsTestSupport.h"
#include "kxcharts/core/KXChartGraphicArea.h"
#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {
namespace {

using test::CountPixels;
using test::MakeBitmap;
using test::TChartsForm;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

// An arrow chart alone on axes of 0..10 drawn into 100 x 100 (X = 10 x, Y = 100 - 10 y).
struct TArrows {
  TOwned<TChartsForm> Form{New<TChartsForm>(nullptr)};
  TKXArrowChart* Chart = New<TKXArrowChart>(Form.get());
  TArrows() {
    Chart->SetBounds(0, 0, 100, 100);
    Chart->SetOptions(Chart->Options() - coValueColors);
    Chart->SetColor(clRed);
    Chart->Pen()->SetColor(clRed);
    test::FixAxes(Chart);
  }
  TOwned<TBitmap> Draw() {
    TOwned<TBitmap> B = MakeBitmap(100, 100);
    Chart->Draw(B->Canvas(), {0, 0, 100, 100});
    return B;
  }
};

TColor Pixel(TBitmap* B, const TPoint& P) {
  return B->Canvas()->Pixel(P.X, P.Y);
}

bool IsRed(TColor C) {
  return test::Near(C, clRed, 60);
}

TEST(ArrowCharts, ANewChartCastsNoShadowAndLabelsItsArrows) {
  StartChartsModule();
  TArrows A;
  EXPECT_EQ(GetChartClass(ctArrow), ClassOf<TKXArrowChart>());
  TOwned<TKXArrowChart> Fresh(New<TKXArrowChart>(nullptr));
  EXPECT_EQ(Fresh->Options().Bits(), 1975u);
  EXPECT_EQ(Fresh->ArrowOptions().Bits(), 22u);
  EXPECT_EQ(Fresh->ArrowHeadSize(), 5);
  // Outside a collection a value still holds start and end.
  TOwned<TKXArrowChartValue> Loose(new TKXArrowChartValue(nullptr));
  EXPECT_EQ(Loose->ValueCount(), 4);
}

// arText and coValueLabels are one switch: either side sets the other, with one change each.
TEST(ArrowCharts, TheTextOptionAndValueLabelsAreOneSwitch) {
  struct TCase {
    const char* Step;
    bool ViaOptions;
    bool On;
    bool Changes;
  };
  const TCase Cases[] = {
      {"labels off by Options", true, false, true},
      {"labels off again changes nothing", true, false, false},
      {"text on by ArrowOptions", false, true, true},
      {"text on again changes nothing", false, true, false},
      {"text off by ArrowOptions", false, false, true},
      {"labels on by Options", true, true, true},
  };
  TArrows A;
  int Changes = 0;
  A.Chart->SetOnChange([&](TObject*) { ++Changes; });
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Step);
    Changes = 0;
    if (C.ViaOptions)
      A.Chart->SetOptions(C.On ? A.Chart->Options() + coValueLabels
                               : A.Chart->Options() - coValueLabels);
    else
      A.Chart->SetArrowOptions(C.On ? A.Chart->ArrowOptions() + arText
                                    : A.Chart->ArrowOptions() - arText);
    EXPECT_EQ(A.Chart->Options().Contains(coValueLabels), C.On);
    EXPECT_EQ(A.Chart->ArrowOptions().Contains(arText), C.On);
    EXPECT_LE(Changes, 2);
    EXPECT_EQ(Changes > 0, C.Changes);
  }
}

TEST(ArrowCharts, TheRangeHoldsBothEndsOfEveryArrow) {
  struct TArrow {
    double X, Y, EX, EY;
  };
  struct TCase {
    const char* Name;
    std::vector<TArrow> Arrows;
    double MinX, MaxX, MinY, MaxY;
  };
  const TCase Cases[] = {
      {"end beyond start", {{1, 2, 5, 7}}, 1, 5, 2, 7},
      {"end below start", {{6, 8, -3, -4}}, -3, 6, -4, 8},
      {"a later arrow reaches past both sides", {{2, 2, 3, 3}, {9, 9, -1, -1}}, -1, 9, -1, 9},
      {"the start-only form ends at the origin", {{4, 5, 0, 0}}, 0, 4, 0, 5},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TArrows A;
    for (const TArrow& R : C.Arrows)
      A.Chart->Values()->Add(R.X, R.Y, R.EX, R.EY);
    const TKXArrowChartValues* V = A.Chart->Values();
    EXPECT_EQ(V->MinValue(0), C.MinX);
    EXPECT_EQ(V->MaxValue(0), C.MaxX);
    EXPECT_EQ(V->MinValue(1), C.MinY);
    EXPECT_EQ(V->MaxValue(1), C.MaxY);
  }
}

TEST(ArrowCharts, TheHeadGrowsWithTheZoomOfBothAxes) {
  struct TCase {
    const char* Name;
    double HLo, HHi, VLo, VHi; // the zoomed ranges (the whole is 0..10)
    int32_t Head;
  };
  const TCase Cases[] = {
      {"no zoom", 0, 10, 0, 10, 5},
      {"a quarter of both: sqrt 32", 0, 2.5, 5, 7.5, 28},
      {"half of one: sqrt(4 + 1)", 0, 5, 0, 10, 11},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TArrows A;
    A.Chart->HorizontalAxis()->SetZoomMinimum(C.HLo);
    A.Chart->HorizontalAxis()->SetZoomMaximum(C.HHi);
    A.Chart->VerticalAxis()->SetZoomMinimum(C.VLo);
    A.Chart->VerticalAxis()->SetZoomMaximum(C.VHi);
    EXPECT_EQ(A.Chart->ZoomedHeadSize(), C.Head);
  }
}

// The shaft runs from start to end pixel; the filled head sits at the end only.
TEST(ArrowCharts, AnArrowRunsFromItsStartToItsEndPixelWithTheHeadAtTheEnd) {
  struct TCase {
    const char* Name;
    double X, Y, EX, EY;
    TPoint OnShaft, BesideHead, BesideTail;
  };
  const TCase Cases[] = {
      {"to the right", 1, 5, 9, 5, {50, 50}, {85, 48}, {15, 48}},
      {"upwards", 5, 1, 5, 9, {50, 50}, {48, 15}, {48, 85}},
      {"to the left", 9, 5, 1, 5, {50, 50}, {15, 48}, {85, 48}},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TArrows A;
    A.Chart->SetArrowHeadSize(10);
    A.Chart->SetOptions(A.Chart->Options() - coValueLabels);
    A.Chart->Values()->Add(C.X, C.Y, C.EX, C.EY);
    TOwned<TBitmap> B = A.Draw();
    EXPECT_TRUE(IsRed(Pixel(B.get(), C.OnShaft)));
    EXPECT_TRUE(IsRed(Pixel(B.get(), C.BesideHead)));
    EXPECT_FALSE(IsRed(Pixel(B.get(), C.BesideTail)));
  }
}

TEST(ArrowCharts, AShadowFallsOnlyWhenTheOptionAllowsIt) {
  TOwned<TForm> Form(New<TForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetBounds(0, 0, 100, 100);
  Panel->ChartShadow()->SetVisible(true);
  Panel->ChartShadow()->Brush()->SetColor(clBlue);
  Panel->ChartShadow()->Pen()->SetColor(clBlue);
  Panel->ChartShadow()->SetSize(4);
  for (TKXChartAxis* Axis : {Panel->BottomAxis(), Panel->LeftAxis()})
    test::SetRange(Axis, 0, 10);
  auto* Chart = New<TKXArrowChart>(Form.get());
  Chart->SetPanel(Panel);
  Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
  Chart->SetColor(clRed);
  Chart->Values()->Add(1, 5, 9, 5);
  const auto Blue = [](TColor C) { return test::Near(C, clBlue, 60); };
  for (bool Shadow : {false, true}) {
    SCOPED_TRACE(Shadow ? "shadow" : "no shadow");
    Chart->SetOptions(Shadow ? Chart->Options() - coNoChartShadow
                             : Chart->Options() + coNoChartShadow);
    TOwned<TBitmap> B = MakeBitmap(100, 100);
    Panel->DrawCharts(B->Canvas(), {0, 0, 100, 100});
    EXPECT_EQ(CountPixels(B.get(), Blue) > 0, Shadow);
    EXPECT_GT(CountPixels(B.get(), IsRed), 0);
  }
}

// Bad numbers: no place, no crash; an arrow of no length goes to the toolkit as it is, which
// draws its text alone.
TEST(ArrowCharts, ArrowsOfNoLengthOrWithoutANumberDrawWithoutHarm) {
  struct TCase {
    const char* Name;
    double X, Y, EX, EY;
    bool Painted;
  };
  const TCase Cases[] = {
      {"NaN start", NaN, 1, 5, 5, false},
      {"infinite end", 1, 1, std::numeric_limits<double>::infinity(), 5, false},
      {"huge ends", 1, 1, 1e308, -1e308, true},
      {"no length: its text", 5, 5, 5, 5, true},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TArrows A;
    A.Chart->Values()->Add(C.X, C.Y, C.EX, C.EY, "text");
    test::FixAxes(A.Chart);
    TOwned<TBitmap> B = A.Draw();
    EXPECT_EQ(test::CountPainted(B.get()) > 0, C.Painted);
    // Every arrow is walked whatever the zoom.
    A.Chart->HorizontalAxis()->SetZoomMinimum(8);
    A.Chart->DoUpdateAxisInfo(A.Chart->HorizontalAxis());
    EXPECT_EQ(A.Chart->VisibleCount(), 1);
  }
}

TEST(ArrowCharts, TheSampleValuesAreSixLabelledArrows) {
  TArrows A;
  A.Chart->SetPreview(true);
  ASSERT_EQ(A.Chart->Values()->Count(), 6);
  const TKXArrowChartValue* First = A.Chart->Values()->Items(0);
  EXPECT_EQ(First->Caption(), "Research");
  EXPECT_EQ(First->EndX(), -20);
  EXPECT_EQ(A.Chart->Values()->Items(5)->EndY(), 60);
  EXPECT_TRUE(A.Chart->Preview());
}

TEST(ArrowCharts, AChartComesBackFromItsStoredForm) {
  StartChartsModule();
  RegisterClasses({ClassOf<TChartsForm>()});
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  Form->SetName("Form1");
  auto* Chart = New<TKXArrowChart>(Form.get());
  Chart->SetName("Arrows1");
  Chart->SetArrowHeadSize(9);
  Chart->SetArrowOptions({arStartHead, arEndHead});
  Chart->Values()->Add(1, 2, 3, 4, "a");
  const std::string Json = SaveFormToString(Form.get());
  TOwned<TChartsForm> Copy(New<TChartsForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  EXPECT_EQ(SaveFormToString(Copy.get()), Json);
  auto* Back = static_cast<TKXArrowChart*>(Copy->FindComponent("Arrows1"));
  ASSERT_NE(Back, nullptr);
  EXPECT_EQ(Back->ArrowHeadSize(), 9);
  EXPECT_EQ(Back->ArrowOptions(), (TArrowOptions{arStartHead, arEndHead}));
  EXPECT_FALSE(Back->Options().Contains(coValueLabels));
  EXPECT_EQ(Back->Values()->Items(0)->EndY(), 4);
}

} // namespace
} // namespace kx

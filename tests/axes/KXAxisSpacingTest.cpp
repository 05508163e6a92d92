// Ranges found from the charts (stacking, hidden and ignoring charts), the ladder of label
// steps, and the search for a step whose labels fit.
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "axes/KXAxesTestSupport.h"
#include "core/KXCoreTestSupport.h"
#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"
#include "kxcharts/toolkit/runtime/KXFormat.h"

namespace kx {
namespace {

using test::Inf;
using test::NaN;

class TSpacingAxis : public TKXChartAxis {
public:
  using TKXChartAxis::GetAxisLabelStyle;
  using TKXChartAxis::GetLabelSpacing;
  using TKXChartAxis::GetMajorGridSpacing;
  using TKXChartAxis::NewSpacing;
  using TKXChartAxis::TKXChartAxis;
  // The arguments the search was last started with.
  double SearchSpacing = NaN, SearchPixelSize = NaN;
  double GetMajorGridSpacing(double Spacing, double PixelSize, int32_t MaxPixel, int32_t MinPixel,
                             double MinSeparation, const TGetTextDimMethod& GetTextDim) override {
    SearchSpacing = Spacing;
    SearchPixelSize = PixelSize;
    return TKXChartAxis::GetMajorGridSpacing(Spacing, PixelSize, MaxPixel, MinPixel, MinSeparation,
                                             GetTextDim);
  }
};

TOwned<TSpacingAxis> MakeAxis(TKXChartAxisLocation Location, double Min, double Max) {
  return test::MakeAxis<TSpacingAxis>(Location, Min, Max);
}

// --- Ranges from the charts ---

class AxisRange : public testing::Test {
protected:
  void SetUp() override {
    Form.reset(New<test::TTestForm>(nullptr));
    Panel = New<TKXChartPanel>(Form.get());
  }
  test::TTestChart* AddChart(double Low, double High, TKXGroupStyle Style = gsNone) {
    auto* C = New<test::TTestChart>(Form.get());
    C->SetPanel(Panel);
    C->Values()->Add({0, Low});
    C->Values()->Add({1, High});
    C->SetGroupStyle(Style);
    return C;
  }
  TKXChartAxis* Axis() { return Panel->LeftAxis(); }
  TOwned<test::TTestForm> Form;
  TKXChartPanel* Panel = nullptr;
};

TEST_F(AxisRange, StackedChartsStartWhereTheOneBelowEnds) {
  auto* A = AddChart(0, 5, gsStacked);
  auto* B = AddChart(1, 7, gsStacked);
  auto* C = AddChart(0, 2, gsStacked);
  Axis()->UpdateAxisValues();
  EXPECT_EQ(A->OffsetVertical(), 0);
  EXPECT_EQ(B->OffsetVertical(), 5);
  EXPECT_EQ(C->OffsetVertical(), 12);
  EXPECT_EQ(Axis()->Maximum(), 14);
  EXPECT_EQ(Axis()->Minimum(), 0);
}

TEST_F(AxisRange, StackedTo100TakesNoOffsetIntoTheRange) {
  AddChart(0, 5, gsStacked100);
  auto* B = AddChart(0, 7, gsStacked100);
  Axis()->UpdateAxisValues();
  EXPECT_EQ(B->OffsetVertical(), 100);
  EXPECT_EQ(Axis()->Minimum(), 0);
  EXPECT_EQ(Axis()->Maximum(), 100);
}

TEST_F(AxisRange, HiddenChartsNeitherCountNorUseUpTheFirstChart) {
  auto* Hidden = AddChart(-50, 500, gsStacked);
  Hidden->SetVisible(false);
  AddChart(3, 5, gsStacked);
  auto* B = AddChart(2, 7, gsStacked);
  Axis()->UpdateAxisValues();
  EXPECT_EQ(Axis()->Minimum(), 3);
  EXPECT_EQ(Axis()->Maximum(), 12);
  EXPECT_EQ(B->OffsetVertical(), 5);
}

TEST_F(AxisRange, AChartThatIgnoresTheAxesUsesUpFirstAndCountsForNothing) {
  auto* Pie = AddChart(3, 5);
  Pie->SetAxesHints(TAxisHints{ahIgnoreAxes});
  Axis()->UpdateAxisValues();
  EXPECT_EQ(Axis()->Minimum(), 0);
  EXPECT_EQ(Axis()->Maximum(), 0);
  AddChart(4, 9);
  Axis()->UpdateAxisValues();
  // Compared with the 0 of the start, since the ignoring chart was first.
  EXPECT_EQ(Axis()->Minimum(), 0);
  EXPECT_EQ(Axis()->Maximum(), 9);
}

TEST_F(AxisRange, StackedIgnoringChartStillLiftsTheNextButAddsNoRange) {
  AddChart(0, 5, gsStacked);
  auto* Ignoring = AddChart(0, 40, gsStacked);
  Ignoring->SetAxesHints(TAxisHints{ahIgnoreAxes});
  auto* Top = AddChart(0, 2, gsStacked);
  Axis()->UpdateAxisValues();
  EXPECT_EQ(Top->OffsetVertical(), 45);
  EXPECT_EQ(Axis()->Maximum(), 47);
}

// --- The ladder of steps ---

TEST(NewSpacing, GivesTheNextStepOfTheLadderStrictlyAbove) {
  const double Ladder[][2] = {{1, 2},   {1.99, 2},   {2, 5},          {4.9, 5},    {5, 10},
                              {10, 25}, {24.9, 25},  {25, 50},        {50, 100},   {100, 250},
                              {0.5, 1}, {0.25, 0.5}, {0.0012, 0.002}, {7e12, 1e13}};
  auto A = MakeAxis(calBottom, 0, 1);
  for (const auto& [Value, Next] : Ladder)
    EXPECT_DOUBLE_EQ(A->NewSpacing(Value), Next) << Value;
}

TEST(NewSpacing, AnswersNumbersWithoutANextStepAsTheyAreAndEnds) {
  auto A = MakeAxis(calBottom, 0, 1);
  EXPECT_EQ(A->NewSpacing(0), 0);
  EXPECT_EQ(A->NewSpacing(-3), -3);
  EXPECT_EQ(A->NewSpacing(Inf), Inf);
  EXPECT_TRUE(std::isnan(A->NewSpacing(NaN)));
  // The smallest and largest doubles end, with a step that underflows or overflows.
  EXPECT_GE(A->NewSpacing(std::numeric_limits<double>::denorm_min()), 0);
  EXPECT_EQ(A->NewSpacing(1e308), Inf);
}

// --- The search ---

// Seven pixels a character: label extents the test can foresee.
int32_t SevenPerChar(const std::string& Text) {
  return int32_t(Text.size()) * 7;
}

TEST(MajorGridSearch, DoublesTheStepUntilTheLabelsFit) {
  const struct {
    const char* Name;
    double Maximum, Spacing, PixelSize;
    int32_t MinSeparationPct;
    double Expected;
  } Cases[] = {// "75" is 14 pixels, within 40 + 0.
               {"Fits", 100, 25, 40, 0, 25},
               // "99975" needs 35 > 10: 50, whose walk is checked against 35 itself.
               {"DoublesOnce", 100000, 25, 10, 0, 50},
               // "99990" (35) against 5 + 40: fits; against 2 + 0: doubled.
               {"SeparationCounts", 100000, 10, 5, 10, 10},
               {"WithoutSeparation", 100000, 10, 2, 0, 20}};
  for (const auto& C : Cases) {
    auto A = MakeAxis(calBottom, 0, C.Maximum);
    A->SetFormat("0");
    const double MinSep = 400.0 * C.MinSeparationPct / 100;
    EXPECT_EQ(A->GetMajorGridSpacing(C.Spacing, C.PixelSize, 400, 0, MinSep, SevenPerChar),
              C.Expected)
        << C.Name;
  }
}

TEST(MajorGridSearch, EndsForLabelsOfNoExtentOnAnAxisOfNoLength) {
  auto A = MakeAxis(calBottom, 0, 10);
  int Calls = 0;
  const double R = A->GetMajorGridSpacing(1, 0, 0, 0, 0, [&Calls](const std::string&) {
    ++Calls;
    return 0;
  });
  EXPECT_EQ(R, 1);
  EXPECT_LE(Calls, 2);
}

TEST(LabelSpacing, RangeZeroToHundredStartsTheSearchAt25MeasuredAtTheTop) {
  auto A = MakeAxis(calBottom, 0, 100);
  auto Bmp = New<TBitmap>();
  TOwned<TBitmap> Owned(Bmp);
  Bmp->SetSize(10, 10);
  A->GetLabelSpacing(Bmp->Canvas(), {0, 0, 400, 20}, 0, 100);
  EXPECT_EQ(A->SearchSpacing, 25);
  EXPECT_EQ(A->SearchPixelSize, 100);
  EXPECT_EQ(A->GetLabelSpacing(Bmp->Canvas(), {0, 0, 400, 20}, 5, 5), 1.0);
}

TEST(LabelSpacing, AFixedIncrementBypassesTheSearchButNotTheCutNorTheLeastStep) {
  const double Cases[][3] = {{2.5, 0, 2},  {0.5, 0, 0.5}, {-2.5, 0, 0},
                             {-0.5, 0, 0}, {2.5, 7, 7},   {0.1, 0.25, 0.25}};
  TOwned<TBitmap> Bmp(New<TBitmap>());
  for (const auto& [Increment, MinStep, Expected] : Cases) {
    auto A = MakeAxis(calLeft, 0, 100);
    A->SetLabelIncrement(Increment);
    A->SetMinStepIncrement(MinStep);
    EXPECT_EQ(A->GetLabelSpacing(Bmp->Canvas(), {0, 0, 50, 300}, 0, 100), Expected)
        << Increment << " " << MinStep;
  }
}

// For real fonts: the step is the first step doubled k times, and it was doubled exactly
// when a label of the walk down from the top was longer than the pixels of the first step
// and the gap.
struct TRangeFont {
  double Min, Max;
  int32_t FontSize;
  TKXChartAxisLocation Location;
};

TEST(LabelSteps, ForRealFontsDoubleTheFirstStepOnlyWhenItsLabelsDoNotFit) {
  const TRangeFont Cases[] = {
      {0, 100, 8, calBottom},  {0, 100, 24, calBottom},    {0, 1e6, 8, calBottom},
      {0, 1e6, 20, calBottom}, {-3.5, 2.25, 8, calBottom}, {0, 0.003, 14, calBottom},
      {0, 100, 8, calLeft},    {0, 100, 40, calLeft},      {1e9, 1e9 + 5e6, 10, calBottom}};
  for (const TRangeFont& C : Cases) {
    SCOPED_TRACE(std::to_string(C.Min) + " .. " + std::to_string(C.Max) + " at " +
                 std::to_string(C.FontSize));
    auto A = MakeAxis(C.Location, C.Min, C.Max);
    TOwned<TBitmap> Bmp(New<TBitmap>());
    TCanvas* Canvas = Bmp->Canvas();
    Canvas->Font()->SetSize(C.FontSize);
    const TRect R{0, 0, 600, 400};
    const double Step = A->GetLabelSpacing(Canvas, R, C.Min, C.Max);
    const double First = A->SearchSpacing;
    ASSERT_GT(Step, 0);
    const double Ratio = Step / First;
    EXPECT_NEAR(std::exp2(std::round(std::log2(Ratio))), Ratio, 1e-9 * Ratio);
    const bool Vertical = A->IsVertical();
    const int32_t Length = Vertical ? R.Height() : R.Width();
    const double Pixels = std::abs(A->AxisToPixel(C.Max, R) - A->AxisToPixel(C.Max - First, R));
    const double Advance = Pixels + Length * 10 / 100.0;
    bool Fits = true;
    double Pos = Length - Pixels;
    for (double V = C.Max - First; Fits; V -= First) {
      const TSize Size = Canvas->TextExtent(A->FormatValue(V));
      Fits = (Vertical ? Size.cy : Size.cx) <= Advance;
      Pos -= Advance;
      if (Pos <= 0) break;
    }
    EXPECT_EQ(Fits, Ratio == 1) << "step " << Step << ", first " << First;
  }
}

// --- Dates ---

TEST(DateAxis, StepsAreFoundInDaysFromTheDatesTheLabelsShow) {
  const struct {
    const char* Name;
    double Span; // days
    const char* Format;
    double LeastStep, MostStep; // days
  } Cases[] = {{"Seconds", 60.0 / 86400, "hh:nn:ss", 1.0 / 86400, 30.0 / 86400},
               {"Days", 14, "mmm d", 1, 7},
               {"Months", 365, "mmm yy", 25, 200},
               {"Years", 365.25 * 30, "yyyy", 365, 10000}};
  const double Start = EncodeDate(2024, 1, 1);
  TOwned<TBitmap> Bmp(New<TBitmap>());
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.Name);
    auto A = MakeAxis(calBottom, Start, Start + C.Span);
    A->SetLabelStyle(alsDateTime);
    A->SetDateTimeFormat(C.Format);
    const double Step = A->GetLabelSpacing(Bmp->Canvas(), {0, 0, 700, 30}, Start, Start + C.Span);
    EXPECT_GE(Step, C.LeastStep);
    EXPECT_LE(Step, C.MostStep);
    EXPECT_EQ(A->FormatValue(Start), FormatDateTime(C.Format, Start));
  }
}

TEST(DateAxis, IsDateTimeByStyleOrByTheActiveChartsDateDimension) {
  TOwned<test::TTestForm> Form(New<test::TTestForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  auto* C = New<test::TTestChart>(Form.get());
  C->SetPanel(Panel);
  C->Values()->Add({1, 2});
  EXPECT_FALSE(Panel->BottomAxis()->IsDateTime());
  C->Values()->SetDateTimeAxes(TKXDimensionSet{0});
  EXPECT_TRUE(Panel->BottomAxis()->IsDateTime());
  EXPECT_FALSE(Panel->LeftAxis()->IsDateTime());
  Panel->LeftAxis()->SetLabelStyle(alsDateTime);
  EXPECT_TRUE(Panel->LeftAxis()->IsDateTime());
  // An empty date format is the general one; a number that is no date reads as a number.
  EXPECT_EQ(Panel->LeftAxis()->FormatValue(EncodeDate(2024, 5, 6)), "5/6/2024");
  EXPECT_EQ(Panel->LeftAxis()->FormatValue(1e300), FormatFloat("#,##0.###", 1e300));
  Panel->LeftAxis()->SetLabelStyle(alsValue);
  Panel->LeftAxis()->SetFormat("");
  EXPECT_EQ(Panel->LeftAxis()->FormatValue(2.5), "2.5000");
}

TEST(LabelStyle, AutoShowsCaptionsOnlyWhenTheActiveChartWantsAndCounts) {
  TOwned<test::TTestForm> Form(New<test::TTestForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  auto* C = New<test::TTestChart>(Form.get());
  C->SetPanel(Panel);
  auto Axis = MakeAxis(calBottom, 0, 1);
  Axis->Charts()->Add(C);
  EXPECT_EQ(Axis->GetAxisLabelStyle(), alsValue); // no values
  C->Values()->Add({0, 1}, "first");
  EXPECT_EQ(Axis->GetAxisLabelStyle(), alsCaption);
  C->SetAxesHints(TAxisHints{ahIgnoreAxes});
  EXPECT_EQ(Axis->GetAxisLabelStyle(), alsValue);
  Axis->SetLabelStyle(alsDateTime);
  EXPECT_EQ(Axis->GetAxisLabelStyle(), alsDateTime);
}

} // namespace
} // namespace kx

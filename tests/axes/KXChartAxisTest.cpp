#include "kxcharts/axes/KXChartAxis.h"
#include "axes/KXAxesTestSupport.h"

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/runtime/KXMath.h"

namespace kx {

namespace {

using test::Inf;
using test::NaN;

// Opens the protected helpers of the axis to the tests.
class TProbeAxis : public TKXChartAxis {
public:
  using TKXChartAxis::TKXChartAxis;
  using TKXChartAxis::UnboundPixelToAxis;
};

TOwned<TProbeAxis> MakeAxis(TKXChartAxisLocation Location, double Min, double Max,
                            TAxisOptions Extra = {}) {
  auto A = test::MakeAxis<TProbeAxis>(Location, Min, Max);
  A->SetOptions(A->Options() + Extra);
  return A;
}

constexpr TRect Wide{0, 0, 1000, 40};
constexpr TRect Tall{0, 0, 40, 1000};
constexpr TAxisOptions Log{aoLogarithmic};
constexpr TAxisOptions LogRev{aoLogarithmic, aoReversed};
constexpr TAxisOptions Rev{aoReversed};

// --- Pixel positions ---

struct TPixelCase {
  const char* Name;
  TKXChartAxisLocation Location;
  TAxisOptions Options;
  TKXLogarithmicType Type;
  int32_t Start, End;
  TRect Rect;
  double Value;
  int32_t Pixel;
};

// Range 0..100 throughout.
TEST(ChartAxis, MapsTheValueToItsPixelOnEveryScale) {
  const TKXLogarithmicType L = ltLogarithmic;
  const TPixelCase Cases[] = {
      // Linear: the minimum at S on a bottom axis, at E on a left axis, back at S on a
      // reversed left axis; values off the range fall off the span.
      {"BottomMinimum", calBottom, {}, L, 0, 100, {0, 0, 400, 300}, 0, 0},
      {"BottomQuarter", calBottom, {}, L, 0, 100, {10, 0, 410, 300}, 25, 110},
      {"BottomReversed", calBottom, Rev, L, 0, 100, {0, 0, 400, 300}, 0, 400},
      {"LeftMinimum", calLeft, {}, L, 0, 100, {0, 20, 400, 320}, 0, 320},
      {"LeftMaximum", calLeft, {}, L, 0, 100, {0, 20, 400, 320}, 100, 20},
      {"LeftReversed", calLeft, Rev, L, 0, 100, {0, 20, 400, 320}, 0, 20},
      {"TopOffRange", calTop, {}, L, 0, 100, {0, 0, 400, 300}, 150, 600},
      {"RightBelowRange", calRight, {}, L, 0, 100, {0, 0, 40, 300}, -50, 450},
      // Start 25 and end 75 on 0..400 give the span 100..300.
      {"SpanMiddle", calBottom, {}, L, 25, 75, {0, 0, 400, 300}, 50, 200},
      {"SpanVertical", calLeft, {}, L, 25, 75, {0, 0, 40, 400}, 0, 300},
      // Logarithmic: the middle of the range at log 6 / log 11 (74.7 %) of the span;
      // below the range the low end, above it past the end.
      {"LogMiddle", calBottom, Log, L, 0, 100, Wide, 50, 747},
      {"LogTenth", calBottom, Log, L, 0, 100, Wide, 10, 289},
      {"LogBelow", calBottom, Log, L, 0, 100, Wide, -5, 0},
      {"LogAbove", calBottom, Log, L, 0, 100, Wide, 200, 1270},
      {"LogVertical", calLeft, Log, L, 0, 100, Tall, 50, 253},
      {"LogVerticalReversed", calLeft, LogRev, L, 0, 100, Tall, 50, 747},
      {"LogReversed", calBottom, LogRev, L, 0, 100, Wide, 10, 711},
      {"LogSpan", calBottom, Log, L, 25, 75, {0, 0, 2000, 10}, 50, 1247},
      // Inverse logarithmic: the mirror image, stretched towards the high end.
      {"InverseTenth", calBottom, Log, ltInverseLogarithmic, 0, 100, Wide, 10, 40},
      {"InverseMiddle", calBottom, Log, ltInverseLogarithmic, 0, 100, Wide, 50, 253},
      {"InverseVertical", calLeft, Log, ltInverseLogarithmic, 0, 100, Tall, 90, 289},
      // Composites: each half of range and span with its own simple type.
      {"FirstLow", calBottom, Log, ltCompositeFirst, 0, 100, Wide, 25, 126},
      {"FirstMiddle", calBottom, Log, ltCompositeFirst, 0, 100, Wide, 50, 500},
      {"FirstHigh", calBottom, Log, ltCompositeFirst, 0, 100, Wide, 75, 874},
      {"FirstVertical", calLeft, Log, ltCompositeFirst, 0, 100, Tall, 75, 126},
      {"FirstReversed", calBottom, LogRev, ltCompositeFirst, 0, 100, Wide, 75, 126},
      {"SecondLow", calBottom, Log, ltCompositeSecond, 0, 100, Wide, 25, 374},
      {"SecondHigh", calBottom, Log, ltCompositeSecond, 0, 100, Wide, 75, 626}};
  for (const TPixelCase& C : Cases) {
    auto A = MakeAxis(C.Location, 0, 100, C.Options);
    A->SetLogarithmicType(C.Type);
    A->SetEndPosition(C.End);
    A->SetStartPosition(C.Start);
    EXPECT_EQ(A->AxisToPixel(C.Value, C.Rect), C.Pixel) << C.Name;
  }
}

TEST(ChartAxis, AnEmptyRangeMapsLinearlyWithoutDividing) {
  for (TKXLogarithmicType T :
       {ltLogarithmic, ltInverseLogarithmic, ltCompositeFirst, ltCompositeSecond}) {
    auto Bottom = MakeAxis(calBottom, 5, 5, {aoLogarithmic});
    Bottom->SetLogarithmicType(T);
    EXPECT_EQ(Bottom->AxisToPixel(5, {10, 0, 110, 50}), 10);
    EXPECT_EQ(Bottom->AxisToPixel(6, {10, 0, 110, 50}), 110);
    auto Left = MakeAxis(calLeft, 5, 5, {aoLogarithmic});
    Left->SetLogarithmicType(T);
    EXPECT_EQ(Left->AxisToPixel(5, {0, 0, 50, 100}), 100);
    EXPECT_EQ(Left->PixelToAxis(37, {0, 0, 50, 100}, false), 5);
  }
}

// --- Pixel to value ---

struct TScale {
  const char* Name;
  TKXChartAxisLocation Location;
  TAxisOptions Options;
  TKXLogarithmicType Type;
  bool Cycles;
  double Min, Max;
};

const TScale Scales[] = {
    {"Linear", calBottom, {}, ltLogarithmic, false, -20, 80},
    {"LinearVertical", calLeft, {}, ltLogarithmic, false, -20, 80},
    {"LinearReversed", calTop, Rev, ltLogarithmic, false, -20, 80},
    {"LinearVerticalReversed", calRight, Rev, ltLogarithmic, false, -20, 80},
    {"Log", calBottom, Log, ltLogarithmic, false, -20, 80},
    {"LogVertical", calLeft, Log, ltLogarithmic, false, 1, 5000},
    {"LogReversed", calBottom, LogRev, ltLogarithmic, false, 1, 5000},
    {"Inverse", calBottom, Log, ltInverseLogarithmic, false, -20, 80},
    {"InverseVertical", calRight, Log, ltInverseLogarithmic, false, -20, 80},
    {"InverseReversed", calTop, LogRev, ltInverseLogarithmic, false, -20, 80},
    {"First", calBottom, Log, ltCompositeFirst, false, 0, 100},
    {"FirstVertical", calLeft, Log, ltCompositeFirst, false, 0, 100},
    {"FirstVerticalReversed", calLeft, LogRev, ltCompositeFirst, false, 0, 100},
    {"Second", calBottom, Log, ltCompositeSecond, false, 0, 100},
    {"SecondVertical", calLeft, Log, ltCompositeSecond, false, 0, 100},
    {"SecondReversed", calTop, LogRev, ltCompositeSecond, false, 0, 100},
    {"Cycles", calBottom, Log, ltLogarithmic, true, 3, 20000},
    {"CyclesVertical", calLeft, Log, ltLogarithmic, true, 3, 20000},
    {"CyclesVerticalReversed", calLeft, LogRev, ltLogarithmic, true, 3, 20000},
    {"CyclesInverse", calBottom, Log, ltInverseLogarithmic, true, 10, 1000},
    {"CyclesFraction", calBottom, Log, ltLogarithmic, true, 0.25, 40},
    {"CyclesComposite", calLeft, Log, ltCompositeFirst, true, 10, 1000}};

TOwned<TProbeAxis> MakeAxis(const TScale& S) {
  auto A = MakeAxis(S.Location, S.Min, S.Max, S.Options);
  A->SetLogarithmicType(S.Type);
  A->SetLogCycles(S.Cycles);
  return A;
}

TEST(ChartAxisInverse, PixelToAxisInvertsAxisToPixelWithinOnePixel) {
  for (const TScale& Sc : Scales) {
    SCOPED_TRACE(Sc.Name);
    auto A = MakeAxis(Sc);
    for (const TRect R : {TRect{0, 0, 640, 480}, TRect{-30, 15, 377, 211}}) {
      for (int32_t Start : {0, 20}) {
        // Halves and cycle bands place the span again inside themselves, which leaves pixels
        // between them that no value reaches: those scales are checked on the whole span.
        if (Start && Sc.Options.Contains(aoLogarithmic) &&
            (Sc.Cycles || Sc.Type >= ltCompositeFirst))
          continue;
        A->SetStartPosition(Start);
        const bool Vertical = A->IsVertical();
        const int32_t S = (Vertical ? R.Top : R.Left) +
                          CanvasRound((Vertical ? R.Height() : R.Width()) * Start / 100.0);
        const int32_t E = Vertical ? R.Bottom : R.Right;
        for (int32_t P = S; P <= E; ++P) {
          const double V = A->PixelToAxis(P, R, false);
          ASSERT_GE(V, A->Minimum());
          ASSERT_LE(V, A->Maximum());
          ASSERT_NEAR(A->AxisToPixel(V, R), P, 1) << "pixel " << P << " value " << V;
        }
      }
    }
  }
}

TEST(ChartAxisInverse, PixelsOffTheSpanGiveTheEndOnThatSide) {
  for (const TScale& Sc : Scales) {
    SCOPED_TRACE(Sc.Name);
    auto A = MakeAxis(Sc);
    const TRect R{0, 0, 640, 480};
    const int32_t Far = A->IsVertical() ? 480 : 640;
    const double AtStart = A->PixelToAxis(-5, R, false);
    const double AtEnd = A->PixelToAxis(Far + 5, R, false);
    EXPECT_EQ(std::min(AtStart, AtEnd), A->Minimum());
    EXPECT_EQ(std::max(AtStart, AtEnd), A->Maximum());
    EXPECT_EQ(A->PixelToAxis(INT32_MIN, R, false), AtStart);
    EXPECT_EQ(A->PixelToAxis(INT32_MAX, R, false), AtEnd);
    // Low values lie at the left, or at the bottom, unless reversed.
    const bool LowFirst = A->IsVertical() == A->Options().Contains(aoReversed);
    EXPECT_EQ(AtStart, LowFirst ? A->Minimum() : A->Maximum());
  }
}

// --- Log cycles ---

TEST(LogCycles, CutTheRangeAtThePowersOfTheBase) {
  const TLogCycles C = CalcLogCycles(50, 2000, 10);
  ASSERT_EQ(C.size(), 4u);
  const double Values[] = {10, 100, 1000, 10000};
  const double Weights[] = {0, 50.0 / 90, 1, 1000.0 / 9000};
  for (size_t I = 0; I < 4; ++I) {
    EXPECT_DOUBLE_EQ(C[I].Value, Values[I]);
    EXPECT_DOUBLE_EQ(C[I].Weight, Weights[I]);
  }
  const TLogCycles One = CalcLogCycles(50, 70, 10);
  ASSERT_EQ(One.size(), 2u);
  EXPECT_DOUBLE_EQ(One[1].Weight, 20.0 / 90);
  EXPECT_EQ(CalcLogCycles(100, 100, 10).size(), 1u);
  const TLogCycles Two = CalcLogCycles(1, 64, 2);
  ASSERT_EQ(Two.size(), 7u);
  EXPECT_DOUBLE_EQ(Two[6].Value, 64);
  EXPECT_DOUBLE_EQ(Two[3].Weight, 1);
  const TLogCycles Fraction = CalcLogCycles(0.25, 40, 10);
  ASSERT_EQ(Fraction.size(), 4u);
  EXPECT_NEAR(Fraction[0].Value, 0.1, 1e-7);
  EXPECT_NEAR(Fraction[1].Weight, (1 - 0.25) / (1 - Fraction[0].Value), 1e-6);
}

TEST(LogCycles, RefuseBoundsTheyCannotCut) {
  const double Bad[][2] = {{0, 10}, {-1, 10}, {1, -1}, {NaN, 10}, {1, Inf}, {100, 10}};
  for (const auto& B : Bad) {
    try {
      CalcLogCycles(B[0], B[1], 10);
      ADD_FAILURE() << B[0] << " .. " << B[1] << " was cut";
    } catch (const Exception& E) {
      EXPECT_EQ(E.Message(), "Illegal Value entered for log cycles!");
    }
  }
  EXPECT_THROW(CalcLogCycles(1, 10, 1), Exception);
  EXPECT_THROW(CalcLogCycles(1, 10, 0), Exception);
}

TEST(LogCycles, BoundsBelowTheSingleRangeStillHaveTheirPowers) {
  const TLogCycles C = CalcLogCycles(1e-300, 1000, 10);
  ASSERT_EQ(C.size(), 304u);
  EXPECT_NEAR(C.front().Value, 1e-300, 1e-310);
  EXPECT_EQ(C.back().Value, 1000);
}

TEST(LogCycles, EachFullCycleTakesAnEqualBandInTheDirectionOfGrowingValues) {
  auto Bottom = MakeAxis(calBottom, 10, 1000, {aoLogarithmic});
  Bottom->SetLogCycles(true);
  const TRect R{0, 0, 200, 20};
  EXPECT_EQ(Bottom->AxisToPixel(10, R), 0);
  EXPECT_EQ(Bottom->AxisToPixel(55, R), 75);
  EXPECT_EQ(Bottom->AxisToPixel(100, R), 100);
  EXPECT_EQ(Bottom->AxisToPixel(550, R), 175);
  EXPECT_EQ(Bottom->AxisToPixel(1000, R), 200);
}

// --- Zoom and pan ---

TEST(ChartAxisZoom, AroundACentreNearAnEndCutsThatEndOnly) {
  auto A = MakeAxis(calBottom, 0, 100);
  A->Zoom(90.0, 2.0f);
  EXPECT_DOUBLE_EQ(A->ZoomMinimum(), 65);
  EXPECT_DOUBLE_EQ(A->ZoomMaximum(), 100);
  EXPECT_TRUE(A->Zooming());
  EXPECT_DOUBLE_EQ(A->ZoomAmount(), 100.0 / 35);
  A->Zoom(50.0, 4.0f);
  EXPECT_DOUBLE_EQ(A->ZoomMinimum(), 37.5);
  EXPECT_DOUBLE_EQ(A->ZoomMaximum(), 62.5);
  for (float NoZoom : {1.0f, 0.5f, -3.0f, std::numeric_limits<float>::quiet_NaN()}) {
    A->Zoom(50.0, 4.0f);
    A->Zoom(10.0, NoZoom);
    EXPECT_FALSE(A->Zooming());
    EXPECT_EQ(A->ZoomMinimum(), 0);
    EXPECT_EQ(A->ZoomMaximum(), 100);
  }
}

TEST(ChartAxisZoom, ToARectangleTakesTheSidesAlongTheAxis) {
  auto Bottom = MakeAxis(calBottom, 0, 100);
  Bottom->Zoom(TRectF{70, 5, 30, 95});
  EXPECT_DOUBLE_EQ(Bottom->ZoomMinimum(), 30);
  EXPECT_DOUBLE_EQ(Bottom->ZoomMaximum(), 70);
  auto Left = MakeAxis(calLeft, 0, 100);
  Left->Zoom(TRectF{70, 5, 30, 95});
  EXPECT_DOUBLE_EQ(Left->ZoomMinimum(), 5);
  EXPECT_DOUBLE_EQ(Left->ZoomMaximum(), 95);
  Left->Zoom(TRectF{0, -50, 0, 500});
  EXPECT_EQ(Left->ZoomMinimum(), 0);
  EXPECT_EQ(Left->ZoomMaximum(), 100);
}

TEST(ChartAxisZoom, ToAPixelAreaOfALocalAxisReadsTheChartsRectangle) {
  TOwned<TKXChart> Chart(New<TKXChart>(nullptr));
  Chart->SetBounds(0, 0, 200, 100);
  TKXChartAxis* H = Chart->LocalHorizontalAxis();
  TKXChartAxis* V = Chart->LocalVerticalAxis();
  ASSERT_TRUE(Is<TKXLocalChartAxis>(H));
  H->SetOptions({});
  V->SetOptions({});
  H->SetMaximum(100);
  V->SetMaximum(100);
  EXPECT_EQ(H->AxisToPixel(50.0), 100);
  H->ZoomPixelArea({50, 0, 150, 100});
  EXPECT_DOUBLE_EQ(H->ZoomMinimum(), 25);
  EXPECT_DOUBLE_EQ(H->ZoomMaximum(), 75);
  V->ZoomPixelArea({0, 20, 10, 80});
  EXPECT_DOUBLE_EQ(V->ZoomMinimum(), 20);
  EXPECT_DOUBLE_EQ(V->ZoomMaximum(), 80);
  // Zoomed again inside the zoom; the pixels now read the zoomed range.
  H->ZoomPixelArea({0, 0, 100, 100});
  EXPECT_DOUBLE_EQ(H->ZoomMinimum(), 25);
  EXPECT_DOUBLE_EQ(H->ZoomMaximum(), 50);
  H->Unzoom();
  EXPECT_FALSE(H->Zooming());
}

TEST(ChartAxisPan, KeepsTheSizeAndStopsAtTheEnd) {
  auto A = MakeAxis(calBottom, 0, 100);
  A->Zoom(TRectF{20, 0, 40, 0});
  int Changes = 0;
  A->SetOnChange([&](TObject*) { ++Changes; });
  A->Pan(10.0);
  EXPECT_DOUBLE_EQ(A->ZoomMinimum(), 30);
  EXPECT_DOUBLE_EQ(A->ZoomMaximum(), 50);
  // Steps longer than the zoomed range, short of the ends, either way.
  A->Pan(30.0);
  EXPECT_DOUBLE_EQ(A->ZoomMinimum(), 60);
  EXPECT_DOUBLE_EQ(A->ZoomMaximum(), 80);
  A->Pan(-30.0);
  EXPECT_DOUBLE_EQ(A->ZoomMinimum(), 30);
  EXPECT_DOUBLE_EQ(A->ZoomMaximum(), 50);
  A->Pan(500.0);
  EXPECT_DOUBLE_EQ(A->ZoomMinimum(), 80);
  EXPECT_DOUBLE_EQ(A->ZoomMaximum(), 100);
  Changes = 0;
  A->Pan(1.0); // at the end: nothing moves, the change is still reported
  EXPECT_DOUBLE_EQ(A->ZoomMinimum(), 80);
  EXPECT_EQ(Changes, 1);
  A->Pan(-Inf);
  EXPECT_DOUBLE_EQ(A->ZoomMinimum(), 0);
  EXPECT_DOUBLE_EQ(A->ZoomMaximum(), 20);
  A->Pan(NaN);
  EXPECT_DOUBLE_EQ(A->ZoomMinimum(), 0);
  // Pixels: 10 of the hundred-pixel square are a tenth of the zoomed range.
  A->Pan(int32_t{10});
  EXPECT_DOUBLE_EQ(A->ZoomMinimum(), 2);
  EXPECT_DOUBLE_EQ(A->ZoomMaximum(), 22);
  EXPECT_DOUBLE_EQ(A->UnboundPixelToAxis(-250, {0, 0, 100, 100}), -50);
  EXPECT_EQ(A->UnboundPixelToAxis(7, {0, 0, 0, 0}), 0);
}

// --- Setters and their invariants ---

TEST(ChartAxisRange, MinimumAboveMaximumMovesItAndEndsBothAutoOptions) {
  auto A = MakeAxis(calLeft, 0, 10);
  A->SetOptions(A->Options() + TAxisOptions{aoAutoMinimum, aoAutoMaximum});
  A->SetMinimum(50);
  EXPECT_EQ(A->Maximum(), 50);
  EXPECT_EQ(A->ZoomMinimum(), 50);
  EXPECT_EQ(A->ZoomMaximum(), 50);
  EXPECT_FALSE(A->Options().Contains(aoAutoMinimum));
  EXPECT_FALSE(A->Options().Contains(aoAutoMaximum));
  A->SetMaximum(-5);
  EXPECT_EQ(A->Minimum(), -5);
}

TEST(ChartAxisRange, AZoomSurvivesAWiderRangeAndIsClampedByANarrowerOne) {
  auto A = MakeAxis(calBottom, 0, 100);
  A->Zoom(TRectF{20, 0, 60, 0});
  A->SetMaximum(200);
  EXPECT_EQ(A->ZoomMaximum(), 60);
  A->SetMaximum(50);
  EXPECT_EQ(A->ZoomMaximum(), 50);
  A->SetMinimum(30);
  EXPECT_EQ(A->ZoomMinimum(), 30);
  A->SetZoomMinimum(-10);
  EXPECT_EQ(A->ZoomMinimum(), 30);
  A->SetZoomMinimum(45);
  A->SetZoomMaximum(40); // below the zoomed minimum: the minimum follows
  EXPECT_EQ(A->ZoomMinimum(), 40);
  EXPECT_EQ(A->ZoomMaximum(), 40);
}

TEST(ChartAxisRange, ZoomingIsDecidedWithinTheToleranceOfSameValue) {
  auto A = MakeAxis(calBottom, 0, 1e6);
  A->SetZoomMaximum(1e6 * (1 - 1e-13));
  EXPECT_FALSE(A->Zooming());
  A->SetZoomMaximum(1e6 * (1 - 1e-9));
  EXPECT_TRUE(A->Zooming());
}

TEST(ChartAxisRange, AnySequenceOfSettersKeepsTheInvariants) {
  std::mt19937 Rng(20261123);
  std::uniform_real_distribution<double> Num(-1000, 1000);
  std::uniform_int_distribution<int> Op(0, 9), Pct(-50, 150);
  auto A = MakeAxis(calBottom, 0, 1);
  for (int Step = 0; Step < 20000; ++Step) {
    const int Which = Op(Rng);
    switch (Which) {
    case 0:
      A->SetMinimum(Num(Rng));
      break;
    case 1:
      A->SetMaximum(Num(Rng));
      break;
    case 2:
      A->SetZoomMinimum(Num(Rng));
      break;
    case 3:
      A->SetZoomMaximum(Num(Rng));
      break;
    case 4:
      A->Zoom(Num(Rng), static_cast<float>(Num(Rng) / 100));
      break;
    case 5:
      A->Pan(Num(Rng));
      break;
    case 6:
      A->Zoom(TRectF{float(Num(Rng)), 0, float(Num(Rng)), 0});
      break;
    case 7:
      A->ZoomPixelArea({Pct(Rng), 0, Pct(Rng), 10});
      break;
    case 8:
      A->SetStartPosition(Pct(Rng));
      break;
    default:
      A->SetEndPosition(Pct(Rng));
      break;
    }
    ASSERT_LE(A->Minimum(), A->Maximum()) << "step " << Step;
    ASSERT_LE(A->Minimum(), A->ZoomMinimum()) << "step " << Step;
    ASSERT_LE(A->ZoomMinimum(), A->ZoomMaximum()) << "step " << Step << " op " << Which;
    ASSERT_LE(A->ZoomMaximum(), A->Maximum()) << "step " << Step;
    ASSERT_LE(A->StartPosition(), A->EndPosition()) << "step " << Step;
    ASSERT_EQ(A->Zooming(), !SameValue(A->Minimum(), A->ZoomMinimum()) ||
                                !SameValue(A->Maximum(), A->ZoomMaximum()));
  }
}

TEST(ChartAxisRange, OtherSettersClampAndFollow) {
  auto A = MakeAxis(calBottom, 0, 1);
  A->SetEndPosition(60);
  A->SetStartPosition(80);
  EXPECT_EQ(A->EndPosition(), 80);
  A->SetEndPosition(10);
  EXPECT_EQ(A->StartPosition(), 10);
  A->SetMinSeparationPct(-4);
  EXPECT_EQ(A->MinSeparationPct(), 0);
  A->SetMinStepIncrement(-0.5);
  EXPECT_EQ(A->MinStepIncrement(), 0);
  A->SetOptions({aoAutoMaximum});
  EXPECT_TRUE(A->NeedAxisUpdate());
}

// --- Title, labels and grid in step with the options ---

TEST(ChartAxisOptions, ShowOptionsAndVisibilityFollowEachOther) {
  auto A = MakeAxis(calBottom, 0, 1);
  const std::pair<TKXChartGraphic*, TAxisOption> Parts[] = {
      {A->Title(), aoShowTitle}, {A->Labels(), aoShowLabels}, {A->Grid(), aoShowGrid}};
  A->SetOptions(A->Options() - TAxisOptions{aoShowTitle, aoShowLabels, aoShowGrid});
  for (auto [Part, Option] : Parts) {
    EXPECT_FALSE(Part->Visible());
    Part->SetVisible(true);
    EXPECT_TRUE(A->Options().Contains(Option));
  }
  A->Title()->SetVisible(false);
  EXPECT_FALSE(A->Options().Contains(aoShowTitle));
  EXPECT_TRUE(A->Options().Contains(aoShowLabels));
}

TEST(ChartAxisOptions, ChangesOfPartsReachTheOwner) {
  auto A = MakeAxis(calBottom, 0, 1);
  int Changes = 0;
  A->SetOnChange([&](TObject*) { ++Changes; });
  A->Title()->SetText("Time");
  A->Labels()->Font()->SetSize(11);
  A->Grid()->SetOpacity(0.5f);
  EXPECT_EQ(Changes, 3);
}

TEST(ChartAxisFonts, TitleAndLabelsStartWithTheFontOfWhatTheyBelongTo) {
  TOwned<TKXChartPanel> Panel(New<TKXChartPanel>(nullptr));
  Panel->Font()->SetName("DejaVu Serif");
  TOwned<TKXChartAxis> A(New<TKXChartAxis>(Panel.get()));
  EXPECT_EQ(A->Title()->Font()->Name(), "DejaVu Serif");
  TOwned<TKXChart> Chart(New<TKXChart>(nullptr));
  Chart->Font()->SetName("DejaVu Sans Mono");
  TOwned<TKXLocalChartAxis> Local(New<TKXLocalChartAxis>(Chart.get()));
  EXPECT_EQ(Local->Labels()->Font()->Name(), "DejaVu Sans Mono");
}

// --- Stored properties and Assign ---

TEST(ChartAxisStreaming, AnAutomaticAxisWithAStoredMaximumStaysAutomatic) {
  auto Form = MakeOwned<test::TPartsForm>(nullptr);
  TKXChartAxis* A = Form->Add<TKXChartAxis>("Axis", nullptr);
  A->SetMaximum(5);
  A->SetMinimum(-2);
  A->SetOptions(A->Options() + TAxisOptions{aoAutoMinimum, aoAutoMaximum});
  std::string Json;
  const auto Copy = test::RoundTrip(Form.get(), &Json);
  TKXChartAxis* B = Copy->Part<TKXChartAxis>(0);
  EXPECT_LT(Json.find("\"Maximum\""), Json.find("\"Options\""));
  EXPECT_LT(Json.find("\"Minimum\""), Json.find("\"Options\""));
  EXPECT_EQ(B->Maximum(), 5);
  EXPECT_EQ(B->Minimum(), -2);
  EXPECT_EQ(B->Options(), A->Options());
}

TEST(ChartAxisStreaming, EveryStoredPropertyRoundTripsAndAssignCopiesAllButFive) {
  auto Form = MakeOwned<test::TPartsForm>(nullptr);
  TKXChartAxis* A = Form->Add<TKXChartAxis>("Axis", nullptr);
  A->SetMaximum(-10);
  A->SetMinimum(-40);
  A->Zoom(TRectF{0, -30, 0, -20}); // a left axis reads Top and Bottom
  A->SetOptions({aoReversed, aoLogarithmic, aoShowGrid});
  A->SetLogBase(2);
  A->SetLogCycles(true);
  A->SetLogarithmicType(ltInverseLogarithmic);
  A->SetLabelIncrement(2.5);
  A->SetLabelStyle(alsValue);
  A->SetFormat("0.0");
  A->SetDateTimeFormat("hh:nn");
  A->SetEndPosition(70);
  A->SetStartPosition(20);
  A->SetInwardPosition(50);
  A->SetMinSeparationPct(4);
  A->SetMinStepIncrement(0.25);
  A->SetSnapGrid(false);
  A->SetTitleMargin(6);
  A->Title()->SetText("Depth");
  A->Title()->Font()->SetColor(clWindowText);
  A->Labels()->SetAlignment(taRightJustify);
  A->Pen()->SetWidth(2);
  A->SetOpacity(0.75f);
  TKXAxisGrid* G = A->Grid();
  G->SetMinorTickCount(5);
  G->SetDrawOptions({agoMinorGrid});
  G->SetTickLength(7);
  G->SetMinorTickLength(1);
  G->SetInnerLength(2);
  G->GridPen()->SetColor(clRed);
  G->SetOrigin(0.5);
  std::string Json;
  const auto Copy = test::RoundTrip(Form.get(), &Json);
  TKXChartAxis* B = Copy->Part<TKXChartAxis>(0);
  test::ExpectStored(Json,
                     {"LogBase",       "LogCycles",      "LogarithmicType",  "LabelIncrement",
                      "LabelStyle",    "Format",         "DateTimeFormat",   "EndPosition",
                      "StartPosition", "InwardPosition", "MinSeparationPct", "MinStepIncrement",
                      "SnapGrid",      "TitleMargin",    "Opacity",          "MinorTickCount",
                      "DrawOptions",   "TickLength",     "MinorTickLength",  "InnerLength",
                      "Origin"});
  // Those that depend on the reading order came back as they were.
  EXPECT_EQ(B->ZoomMinimum(), -30);
  EXPECT_EQ(B->ZoomMaximum(), -20);
  EXPECT_EQ(B->Options(), A->Options());
  EXPECT_FALSE(B->Title()->Visible());
  EXPECT_EQ(B->Title()->Font()->Color(), clWindowText);

  // Assign copies the charts and every stored property but the label increment, the kind
  // of logarithm, the grid snap and the grid's origin; nor does it move the axis.
  TOwned<TKXChart> Chart(New<TKXChart>(nullptr));
  A->Charts()->Add(Chart.get());
  auto T = MakeOwned<TKXChartAxis>(nullptr);
  T->SetLocation(calBottom);
  T->Assign(A);
  EXPECT_EQ(T->LabelIncrement(), 0);
  EXPECT_EQ(T->LogarithmicType(), ltLogarithmic);
  EXPECT_TRUE(T->SnapGrid());
  EXPECT_EQ(T->Location(), calBottom);
  EXPECT_EQ(T->Grid()->Origin(), 0);
  EXPECT_EQ(T->Grid()->Axis(), T.get());
  ASSERT_EQ(T->Charts()->Count(), 1);
  EXPECT_EQ(T->Charts()->Items(0), Chart.get());
  T->SetLabelIncrement(2.5);
  T->SetLogarithmicType(ltInverseLogarithmic);
  T->SetSnapGrid(false);
  T->Grid()->SetOrigin(0.5);
  T->SetLocation(A->Location());
  EXPECT_EQ(test::Stored(T.get()), test::Stored(A));
  // The copied base is the one mapped with.
  for (TKXChartAxis* X : {A, T.get()}) {
    X->SetLogarithmicType(ltLogarithmic);
    X->SetLocation(calBottom);
    X->SetMaximum(1000);
    X->SetMinimum(1);
  }
  EXPECT_EQ(T->AxisToPixel(7, Wide), A->AxisToPixel(7, Wide));
  A->Charts()->Clear();
  T->Charts()->Clear();
}

// --- Bad input ---

// Every mapping and zoom gives a defined answer: pixels within the canvas limit, values
// within the range where the range has any, and UBSan stays quiet.
TEST(ChartAxisBadInput, MappingAndZoomingStayDefined) {
  const double Ranges[][2] = {{NaN, 1},       {0, NaN},    {-Inf, Inf}, {-1e308, 1e308},
                              {1e308, 1e308}, {0, 1e-300}, {5, 5},      {-1e6, -1e-6}};
  const double Values[] = {NaN, Inf, -Inf, 1e308, -1e308, 0, 1e-300, 0.5, -7};
  const TRect Rects[] = {{0, 0, 400, 300},
                         {0, 0, 0, 0},
                         {100, 100, -50, -50},
                         {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}};
  const int32_t Pixels[] = {INT32_MIN, -1, 0, 150, INT32_MAX};
  for (const auto& [Min, Max] : Ranges) {
    SCOPED_TRACE(std::to_string(Min) + " .. " + std::to_string(Max));
    const bool Finite = std::isfinite(Min) && std::isfinite(Max);
    for (TKXChartAxisLocation L : {calBottom, calLeft})
      for (TAxisOptions O : {TAxisOptions{}, Log, LogRev})
        for (TKXLogarithmicType T : {ltLogarithmic, ltInverseLogarithmic, ltCompositeFirst})
          for (int32_t Base : {10, 1, 0, -3})
            for (bool Cycles : {false, true}) {
              auto A = MakeAxis(L, 0, 1, O);
              A->SetMaximum(Max);
              A->SetMinimum(Min);
              A->SetLogarithmicType(T);
              A->SetLogBase(Base);
              A->SetLogCycles(Cycles && O.Contains(aoLogarithmic));
              const bool Linear = !O.Contains(aoLogarithmic);
              try {
                for (const TRect& R : Rects) {
                  for (double V : Values) {
                    const int32_t P = A->AxisToPixel(V, R);
                    ASSERT_LE(std::abs(int64_t(P)), int64_t(KXMaxCanvasInt));
                  }
                  for (int32_t P : Pixels) {
                    const double V = A->PixelToAxis(P, R, false);
                    if (Finite && (Linear || Base == 10)) {
                      ASSERT_GE(V, A->ZoomMinimum())
                          << GetEnumName(L) << " " << O.Bits() << " " << GetEnumName(T) << " "
                          << Base << " pixel " << P << " rect " << R.Right;
                      ASSERT_LE(V, A->ZoomMaximum());
                    }
                  }
                }
              } catch (const Exception& E) {
                // Only a log-cycle axis may refuse its range.
                ASSERT_TRUE(A->LogCycles()) << E.Message();
              }
              A->SetOnChange(nullptr);
              if (A->LogCycles()) continue;
              A->Zoom(0.25, 3.0f);
              A->Zoom(NaN, 2.0f);
              A->Zoom(TRectF{-1e30f, 0, 1e30f, 0});
              A->ZoomPixelArea({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX});
              A->Pan(1e308);
              A->Pan(NaN);
              A->Pan(int32_t{INT32_MAX});
              if (Finite) {
                ASSERT_LE(A->Minimum(), A->ZoomMinimum());
                ASSERT_LE(A->ZoomMinimum(), A->ZoomMaximum());
                ASSERT_LE(A->ZoomMaximum(), A->Maximum());
              }
            }
  }
}

} // namespace

} // namespace kx

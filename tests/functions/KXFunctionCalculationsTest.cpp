// Every function type and every period kind on small sources with results worked out by
// hand: what the target holds (stamp in X, result in Y) after one calculation.
#include <cmath>
#include <string>

#include "KXFunctionsTestSupport.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"

namespace kx {
namespace {

using test::ExpectXY;
using test::FunctionFixture;
using test::ReadXY;
using test::NaN;
using test::TXYList;

// --- The calculations over one period of all values ---

// 3 1 4 1 5 9 2 6 at X = 0..7: sum 31, mean 3.875, squared deviations 52.875, squares 173.
struct TTypeCase {
  TKXChartFunctionType Type;
  double Result;
};

class FunctionTypes : public FunctionFixture, public testing::WithParamInterface<TTypeCase> {};

TEST_P(FunctionTypes, ReduceTheWholeSourceToOneValueAtItsCentre) {
  Fill({{0, 3}, {1, 1}, {2, 4}, {3, 1}, {4, 5}, {5, 9}, {6, 2}, {7, 6}});
  Wire(GetParam().Type, fpAll, 1);
  ExpectXY(ReadXY(Target), {{3.5, GetParam().Result}});
}

INSTANTIATE_TEST_SUITE_P(
    Hand, FunctionTypes,
    testing::Values(TTypeCase{cfSum, 31}, TTypeCase{cfMedian, 3} /* (1 + 5) / 2, by position */,
                    TTypeCase{cfAverage, 3.875}, TTypeCase{cfMinimum, 1}, TTypeCase{cfMaximum, 9},
                    TTypeCase{cfTotalVariance, 52.875}, TTypeCase{cfVariance, 52.875 / 7},
                    TTypeCase{cfPopnVariance, 52.875 / 8},
                    TTypeCase{cfStdDev, std::sqrt(52.875 / 7)},
                    TTypeCase{cfPopnStdDev, std::sqrt(52.875 / 8)},
                    TTypeCase{cfSumOfSquares, 173}, TTypeCase{cfNorm, std::sqrt(173.0)},
                    TTypeCase{cfGreatestCommonDivisor, 1}),
    [](const auto& Info) { return GetEnumName(Info.param.Type); });

// The reducing forms alone, on ranges with a character of their own.
struct TReduceCase {
  const char* Name;
  TKXChartFunctionType Type;
  std::vector<double> Ys;
  double Result;
};

class ReducingForms : public FunctionFixture, public testing::WithParamInterface<TReduceCase> {};

TEST_P(ReducingForms, GiveTheFigureOfTheirRange) {
  TXYList XY;
  for (double Y : GetParam().Ys)
    XY.emplace_back(static_cast<double>(XY.size()), Y);
  Fill(XY);
  Wire(GetParam().Type, fpAll, 1);
  ASSERT_EQ(Target->Values()->Count(), 1);
  EXPECT_TRUE(test::SameNumber(Target->Values()->Items(0)->GetValue(1), GetParam().Result))
      << Target->Values()->Items(0)->GetValue(1);
}

INSTANTIATE_TEST_SUITE_P(
    Hand, ReducingForms,
    testing::Values(
        TReduceCase{"MedianOfFourIsTheMeanOfTheMiddleTwo", cfMedian, {1, 2, 3, 4}, 2.5},
        TReduceCase{"MedianIsByPositionNotBySize", cfMedian, {1, 9, 2}, 9},
        TReduceCase{"GcdRoundsHalvesToEven", cfGreatestCommonDivisor, {12, 18.4, 30}, 6},
        TReduceCase{"GcdFoldsFromTheRightKeepingTheSign", cfGreatestCommonDivisor, {12, -18}, -6},
        TReduceCase{"GcdOfANonWholeNumberIsNaN", cfGreatestCommonDivisor, {12, 1e12}, NaN},
        TReduceCase{"GcdOfTheLowestIntegerDoesNotOverflow", cfGreatestCommonDivisor,
                    {-2147483648.0, -1}, -1},
        TReduceCase{"MinimumSkipsALaterNaN", cfMinimum, {4, NaN, 2}, 2},
        TReduceCase{"MaximumKeepsAFirstNaN", cfMaximum, {NaN, 4}, NaN},
        TReduceCase{"SumOfANaNIsNaN", cfSum, {1, NaN}, NaN},
        TReduceCase{"SampleVarianceOfOneValueIsNaN", cfVariance, {5}, NaN},
        TReduceCase{"SampleDeviationOfOneValueIsNaN", cfStdDev, {5}, NaN},
        TReduceCase{"PopulationVarianceOfOneValueIsZero", cfPopnVariance, {5}, 0}),
    [](const auto& Info) { return std::string(Info.param.Name); });

TEST_F(FunctionFixture, TheReducingFormsCutTheirRangeToTheValues) {
  FillRamp(4); // Y = 1 2 3 4
  TDateTime Stamp = 0;
  using F = TKXCustomChartFunction;
  EXPECT_EQ(F::Sum(Source, -5, 99, Stamp, -1), 10);
  EXPECT_EQ(F::Sum(Source, 3, 1, Stamp, -1), 0);
  EXPECT_TRUE(std::isnan(F::Average(Source, 3, 1, Stamp, -1)));
  EXPECT_TRUE(std::isnan(F::Median(nullptr, 0, 3, Stamp, -1)));
  EXPECT_EQ(F::ToArray(Source, 2, 9, 0), (TKXChartValueTypeArray{2, 3}));
  EXPECT_EQ(F::GetPeriodIndex(Source, 1, 2.5), 2);
  EXPECT_EQ(F::GetPeriodIndex(Source, 3, -1), 3); // a period holds a value at least
}

TEST_F(FunctionFixture, CopyAddsEveryValueOfAPeriodUnderItsStamp) {
  Fill({{0, 5}, {1, 6}, {2, 7}});
  Wire(cfCopy, fpAll, 1);
  ExpectXY(ReadXY(Target), {{1, 5}, {1, 6}, {1, 7}});
}

TEST_F(FunctionFixture, MedianOfDatesStampsTheTargetWithTheMedian) {
  Fill({{10, 0}, {11, 0}, {15, 0}});
  Source->Values()->SetIsDateTime(true);
  Function->SetSourceDim(0);
  Wire(cfMedian, fpAll, 1);
  ExpectXY(ReadXY(Target), {{11, 11}});
}

TEST_F(FunctionFixture, CustomWithoutAHandlerLeavesTheTargetEmpty) {
  FillRamp(5);
  Target->Values()->Add(1, 1);
  Wire(cfCustom, fpEachValue, 1);
  EXPECT_EQ(Target->Values()->Count(), 0);
}

// --- The periods, with sums of the ramp (i, i + 1) ---

struct TPeriodCase {
  const char* Name;
  TKXChartFunctionPeriod Period;
  double PeriodValue;
  bool Centre;
  int Count;
  TXYList Expected;
};

class Periods : public FunctionFixture, public testing::WithParamInterface<TPeriodCase> {};

TEST_P(Periods, CutTheSourceAsWorkedOutByHand) {
  FillRamp(GetParam().Count);
  Function->SetCenterTimePeriod(GetParam().Centre);
  Wire(cfSum, GetParam().Period, GetParam().PeriodValue);
  ExpectXY(ReadXY(Target), GetParam().Expected);
}

INSTANTIATE_TEST_SUITE_P(
    Hand, Periods,
    testing::Values(
        TPeriodCase{"EachValueCopiesWithTheSourceStamps", fpEachValue, 1, true, 3,
                    {{0, 1}, {1, 2}, {2, 3}}},
        TPeriodCase{"ValueCountThreeOverTen", fpValueCount, 3, true, 10,
                    {{1, 6}, {4, 15}, {7, 24}, {9, 10}}},
        // Running ends 1.5, 4, 6.5, 9 rounded to even: periods of 3, 2, 2, 3 values.
        TPeriodCase{"FractionalCountAlternatesLengths", fpValueCount, 2.5, true, 10,
                    {{1, 6}, {3.5, 9}, {5.5, 13}, {8, 27}}},
        TPeriodCase{"ValueCountBelowOneDoesNothing", fpValueCount, 0.5, true, 10, {}},
        TPeriodCase{"PercentValuesIsACountOfTheWhole", fpPercentValues, 0.3, true, 10,
                    {{1, 6}, {4, 15}, {7, 24}, {9, 10}}},
        TPeriodCase{"PercentValuesBelowOneValueTakeOneEach", fpPercentValues, 0.1, true, 3,
                    {{0, 1}, {1, 2}, {2, 3}}},
        // The first period ends a millisecond short of 3, the later ones at their end.
        TPeriodCase{"AxisRangeCentred", fpAxisRange, 3, true, 10, {{1, 6}, {4.5, 22}, {8, 27}}},
        TPeriodCase{"AxisRangeAtTheStarts", fpAxisRange, 3, false, 10,
                    {{0, 6}, {3, 22}, {6, 27}}},
        // The axis of a source never painted finds its range 0..9 first: periods of 2.7.
        TPeriodCase{"PercentRangeOfANeverPaintedSource", fpPercentRange, 0.3, true, 10,
                    {{1, 6}, {4, 15}, {7, 24}, {9, 10}}},
        TPeriodCase{"AllInOne", fpAll, 1, true, 10, {{4.5, 55}}},
        TPeriodCase{"AllOfOneValue", fpAll, 1, true, 1, {{0, 1}}}),
    [](const auto& Info) { return std::string(Info.param.Name); });

TEST_F(FunctionFixture, TheDefaultPercentRangeMakesTenPeriodsOfAnEvenSource) {
  FillRamp(101);
  Wire(cfSum, fpPercentRange, 0.1);
  EXPECT_EQ(Target->Values()->Count(), 10);
}

// --- Calendar periods at their boundaries ---

TDateTime At(int Y, int M, int D, int H = 0, int N = 0) {
  return EncodeDateTime(Y, M, D, H, N, 0, 0);
}

struct TCalendarCase {
  const char* Name;
  TKXChartFunctionPeriod Period;
  TXYList Source;
  TXYList Expected;
};

class CalendarPeriods : public FunctionFixture, public testing::WithParamInterface<TCalendarCase> {};

TEST_P(CalendarPeriods, CutAtTheirBoundaries) {
  Source->Values()->SetSorted(false); // a NaN would sort last
  Fill(GetParam().Source);
  Wire(cfSum, GetParam().Period, 1);
  ExpectXY(ReadXY(Target), GetParam().Expected, 1e-7);
}

// Noon of 29, 30, 31 December 2023 and 1, 2, 3 January 2024 (a Friday to a Wednesday).
const TXYList YearEnd = {{At(2023, 12, 29, 12), 1}, {At(2023, 12, 30, 12), 2},
                         {At(2023, 12, 31, 12), 3}, {At(2024, 1, 1, 12), 4},
                         {At(2024, 1, 2, 12), 5},   {At(2024, 1, 3, 12), 6}};

INSTANTIATE_TEST_SUITE_P(
    Hand, CalendarPeriods,
    testing::Values(
        // Stamped half a month in: 15 days and 12 hours of a 31-day month.
        TCalendarCase{"MonthsAcrossTheYearEnd", fpMonth, YearEnd,
                      {{At(2023, 12, 16, 12), 6}, {At(2024, 1, 16, 12), 15}}},
        TCalendarCase{"FebruaryOfALeapYear", fpMonth, {{At(2024, 2, 10), 1}, {At(2024, 3, 1), 2}},
                      {{At(2024, 2, 15, 12), 1}, {At(2024, 3, 16, 12), 2}}},
        TCalendarCase{"YearsStampedSixMonthsIn", fpYear, YearEnd,
                      {{At(2023, 1, 1) + 182, 6}, {At(2024, 1, 1) + 182, 15}}},
        // Friday 29 December belongs to the week of Monday 25 December.
        TCalendarCase{"WeeksStartOnTheirMonday", fpWeek, YearEnd,
                      {{At(2023, 12, 28, 12), 6}, {At(2024, 1, 4, 12), 15}}},
        // Midnight values: the first day ends a millisecond short, the later ones take the
        // value at their end.
        TCalendarCase{"DaysAtMidnight", fpDay,
                      {{At(2024, 1, 1), 1}, {At(2024, 1, 2), 2}, {At(2024, 1, 3), 3},
                       {At(2024, 1, 4), 4}},
                      {{At(2024, 1, 1, 12), 1}, {At(2024, 1, 2, 12), 5}, {At(2024, 1, 3, 12), 4}}},
        // The day of 2 January lies in a gap and takes the next value under its own stamp.
        TCalendarCase{"ADayInAGapTakesTheNextValue", fpDay,
                      {{At(2024, 1, 1, 12), 1}, {At(2024, 1, 5, 12), 2}},
                      {{At(2024, 1, 1, 12), 1}, {At(2024, 1, 2, 12), 2}}},
        TCalendarCase{"HoursAcrossMidnight", fpHour,
                      {{At(2023, 12, 31, 23, 30), 1}, {At(2023, 12, 31, 23, 45), 2},
                       {At(2024, 1, 1, 0, 15), 4}},
                      {{At(2023, 12, 31, 23, 30), 3}, {At(2024, 1, 1, 0, 30), 4}}},
        TCalendarCase{"MinutesStampedHalfAMinuteIn", fpMinute,
                      {{At(2024, 1, 1, 10, 0) + 10.0 / SecsPerDay, 1},
                       {At(2024, 1, 1, 10, 1) + 5.0 / SecsPerDay, 2}},
                      {{At(2024, 1, 1, 10, 0) + 30.0 / SecsPerDay, 1},
                       {At(2024, 1, 1, 10, 1) + 30.0 / SecsPerDay, 2}}},
        TCalendarCase{"SecondsStampedHalfASecondIn", fpSecond,
                      {{At(2024, 1, 1, 10) + 0.2 / SecsPerDay, 1},
                       {At(2024, 1, 1, 10) + 0.9 / SecsPerDay, 2},
                       {At(2024, 1, 1, 10) + 1.1 / SecsPerDay, 4}},
                      {{At(2024, 1, 1, 10) + 0.5 / SecsPerDay, 3},
                       {At(2024, 1, 1, 10) + 1.5 / SecsPerDay, 4}}},
        TCalendarCase{"AFirstValueThatIsNoDateMakesNoPeriod", fpDay, {{NaN, 1}, {At(2024, 1, 1), 2}},
                      {}},
        TCalendarCase{"TheLastYearOfTheCalendarTakesTheRest", fpYear,
                      {{At(9999, 3, 1), 1}, {At(9999, 12, 31), 2}, {1e308, 4}},
                      {{At(9999, 1, 1) + 182, 7}}}),
    [](const auto& Info) { return std::string(Info.param.Name); });

TEST_F(FunctionFixture, CalendarStampsStandAtTheStartWithoutCentring) {
  Fill(YearEnd);
  Function->SetCenterTimePeriod(false);
  Wire(cfSum, fpMonth, 1);
  ExpectXY(ReadXY(Target), {{At(2023, 12, 1), 6}, {At(2024, 1, 1), 15}});
}

// --- Stamps and dimensions ---

TEST_F(FunctionFixture, WithoutATimeDimensionTheStampIsTheMiddleIndexAndIsNotWritten) {
  auto* Plain = New<TKXChart>(Form.get());
  auto* PlainTarget = New<TKXChart>(Form.get());
  for (double V : {5, 6, 7, 8, 9, 10, 11})
    Plain->Values()->Add(V);
  std::vector<TDateTime> Stamps;
  Function->SetOnCustomFunction([&](TKXCustomChart* S, TKXCustomChart* T, int32_t Low,
                                    int32_t High, TDateTime Stamp, int32_t SD, int32_t TD) {
    Stamps.push_back(Stamp);
    TKXCustomChartFunction::Sum(S, T, Low, High, Stamp, SD, TD);
  });
  Function->SetFunctionType(cfCustom);
  Function->SetPeriod(fpValueCount);
  Function->SetPeriodValue(3);
  Function->SetSourceChart(Plain);
  Function->SetTargetChart(PlainTarget);
  EXPECT_EQ(Stamps, (std::vector<TDateTime>{1, 4, 6}));
  ASSERT_EQ(PlainTarget->Values()->Count(), 3);
  EXPECT_EQ(PlainTarget->Values()->Items(2)->Value(), 11);
}

TEST_F(FunctionFixture, ATargetDimensionThatIsTheTimeDimensionTakesTheResult) {
  FillRamp(3);
  Function->SetTargetChart(Target);
  Function->SetTargetDim(0);
  Wire(cfSum, fpAll, 1);
  ASSERT_EQ(Target->Values()->Count(), 1);
  EXPECT_EQ(Target->Values()->Items(0)->GetValue(0), 6);
}

TEST_F(FunctionFixture, ASourceOfOnlyNaNGivesNaNResults) {
  Fill({{NaN, NaN}, {NaN, NaN}, {NaN, NaN}});
  Wire(cfAverage, fpAxisRange, 1);
  // A NaN is never above the end of a period: one period takes them all.
  ASSERT_EQ(Target->Values()->Count(), 1);
  EXPECT_TRUE(std::isnan(Target->Values()->Items(0)->GetValue(1)));
  Function->SetPeriod(fpValueCount);
  EXPECT_EQ(Target->Values()->Count(), 3);
}

} // namespace
} // namespace kx

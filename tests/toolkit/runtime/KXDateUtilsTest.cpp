#include "kxcharts/toolkit/runtime/KXDateUtils.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/KXTestSupport.h"

namespace kx {
namespace {

struct TYMD {
  int32_t Y, M, D;
};

TYMD DateParts(TDateTime V) {
  TYMD R;
  DecodeDate(V, R.Y, R.M, R.D);
  return R;
}

::testing::AssertionResult IsDate(TDateTime V, int32_t Y, int32_t M, int32_t D, int32_t H = 0,
                                  int32_t N = 0, int32_t S = 0, int32_t MS = 0) {
  int32_t y, m, d, h, n, s, ms;
  DecodeDateTime(V, y, m, d, h, n, s, ms);
  if (y == Y && m == M && d == D && h == H && n == N && s == S && ms == MS)
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << V << " is " << y << "-" << m << "-" << d << " " << h
                                       << ":" << n << ":" << s << "." << ms;
}

TEST(DateUtils, KnownDatesHaveTheirSerialNumbersAndWeekdays) {
  struct {
    int32_t Y, M, D;
    double Serial;
    int32_t DayOfWeek, IsoDay; // 1 = Sunday; 1 = Monday
  } const Cases[] = {
      {1899, 12, 30, 0, 7, 6},    {1899, 12, 29, -1, 6, 5},  {1900, 1, 1, 2, 2, 1},
      {1900, 3, 1, 61, 5, 4},     {1970, 1, 1, 25569, 5, 4}, {2000, 1, 1, 36526, 7, 6},
      {2024, 2, 29, 45351, 5, 4}, {1, 1, 1, -693593, 2, 1},  {9999, 12, 31, 2958465, 6, 5},
  };
  for (const auto& C : Cases) {
    SCOPED_TRACE(std::to_string(C.Y) + "-" + std::to_string(C.M) + "-" + std::to_string(C.D));
    EXPECT_EQ(EncodeDate(C.Y, C.M, C.D), C.Serial);
    EXPECT_TRUE(IsDate(C.Serial, C.Y, C.M, C.D));
    EXPECT_EQ(DayOfWeek(C.Serial), C.DayOfWeek);
    EXPECT_EQ(DayOfTheWeek(C.Serial), C.IsoDay);
  }
}

TEST(DateUtils, EveryDayOfTheCalendarRoundTrips) {
  // A stride through the whole range: decode, encode back, and weekdays that keep step.
  for (int64_t Day = -693593; Day <= 2958465; Day += 997) {
    const TYMD P = DateParts(double(Day));
    ASSERT_EQ(EncodeDate(P.Y, P.M, P.D), double(Day)) << Day;
    ASSERT_EQ(DayOfWeek(double(Day)), (((Day + 6) % 7) + 7) % 7 + 1) << Day;
  }
}

TEST(DateUtils, LeapYearsFollowTheGregorianRule) {
  struct {
    int32_t Year;
    bool Leap;
  } const Cases[] = {{1900, false}, {2000, true}, {2023, false}, {2024, true},
                     {2100, false}, {1600, true}, {4, true},     {1, false}};
  for (const auto& C : Cases) {
    EXPECT_EQ(IsLeapYear(C.Year), C.Leap) << C.Year;
    EXPECT_EQ(DaysInAMonth(C.Year, 2), C.Leap ? 29 : 28) << C.Year;
    EXPECT_EQ(DaysInAYear(C.Year), C.Leap ? 366 : 365) << C.Year;
  }
  EXPECT_EQ(DaysInMonth(EncodeDate(2023, 4, 10)), 30);
  EXPECT_EQ(DayOfTheYear(EncodeDate(2024, 12, 31)), 366);
  EXPECT_THROW(DaysInAMonth(2024, 13), EConvertError);
}

TEST(DateUtils, InvalidPartsRaiseEncodeErrors) {
  const int32_t BadDates[][3] = {{2023, 2, 29}, {1900, 2, 29}, {0, 1, 1},     {10000, 1, 1},
                                 {2023, 13, 1}, {2023, 0, 1},  {2023, 4, 31}, {2023, 1, 0}};
  for (const auto& B : BadDates) {
    TDateTime Out = -7;
    EXPECT_FALSE(TryEncodeDate(B[0], B[1], B[2], Out));
    EXPECT_EQ(Out, -7); // untouched on failure
    EXPECT_EQ(test::MessageOf<EConvertError>([&] { EncodeDate(B[0], B[1], B[2]); }),
              "Invalid argument to date encode");
  }
  const int32_t BadTimes[][4] = {
      {24, 0, 0, 0}, {0, 60, 0, 0}, {0, 0, 60, 0}, {0, 0, 0, 1000}, {-1, 0, 0, 0}};
  for (const auto& B : BadTimes)
    EXPECT_EQ(test::MessageOf<EConvertError>([&] { EncodeTime(B[0], B[1], B[2], B[3]); }),
              "Invalid argument to time encode");
}

TEST(DateUtils, NegativeDatesCountDaysBackAndKeepTheTimeOfDay) {
  EXPECT_EQ(EncodeDateTime(1899, 12, 29, 6, 0, 0, 0), -1.25);
  EXPECT_TRUE(IsDate(-1.25, 1899, 12, 29, 6));
  EXPECT_TRUE(IsDate(-0.25, 1899, 12, 30, 6)); // the same moment as 0.25
  EXPECT_EQ(IncHour(-1.25, 24), 0.25);
  EXPECT_EQ(IncDay(0.25, -1), -1.25);
  EXPECT_EQ(IncMinute(0.0, -30), -1 - EncodeTime(23, 30, 0, 0));
  EXPECT_EQ(DateOf(-1.25), -1);
  EXPECT_EQ(TimeOf(-1.25), 0.25);
  EXPECT_EQ(StartOfTheDay(-0.75), 0);
  EXPECT_EQ(EndOfTheDay(-1.25), -1 - EncodeTime(23, 59, 59, 999));
}

TEST(DateUtils, TimesResolveToTheNearestMillisecond) {
  EXPECT_TRUE(IsDate(0.5, 1899, 12, 30, 12));
  EXPECT_TRUE(IsDate(EncodeTime(23, 59, 59, 999), 1899, 12, 30, 23, 59, 59, 999));
  EXPECT_TRUE(IsDate(0.9999999999, 1899, 12, 31)); // rounds up into the next midnight
  const TDateTime T = EncodeTime(13, 5, 9, 7);
  EXPECT_EQ((std::vector{HourOf(T), MinuteOf(T), SecondOf(T), MilliSecondOf(T)}),
            (std::vector<int32_t>{13, 5, 9, 7}));
}

TEST(DateUtils, MonthStepsClampTheDayToTheMonthsEnd) {
  struct {
    TYMD From;
    int32_t Months;
    TYMD To;
  } const Cases[] = {
      {{2024, 1, 31}, 1, {2024, 2, 29}},    {{2023, 1, 31}, 1, {2023, 2, 28}},
      {{2024, 3, 31}, -1, {2024, 2, 29}},   {{2023, 12, 15}, 1, {2024, 1, 15}},
      {{2024, 1, 15}, -13, {2022, 12, 15}}, {{2024, 2, 29}, 12, {2025, 2, 28}},
      {{2000, 5, 31}, 1200, {2100, 5, 31}},
  };
  for (const auto& C : Cases) {
    const TDateTime From = EncodeDateTime(C.From.Y, C.From.M, C.From.D, 13, 30, 0, 0);
    EXPECT_TRUE(IsDate(IncMonth(From, C.Months), C.To.Y, C.To.M, C.To.D, 13, 30))
        << C.From.Y << "-" << C.From.M << "-" << C.From.D << " + " << C.Months;
  }
  EXPECT_TRUE(IsDate(IncYear(EncodeDate(2024, 2, 29)), 2025, 2, 28));
  EXPECT_EQ(IncMonth(0, 6), EncodeDate(1900, 6, 30)); // six months as a date value
}

TEST(DateUtils, SmallStepsCarryAcrossDayMonthAndYearEnds) {
  const TDateTime LastMs = EncodeDateTime(2023, 12, 31, 23, 59, 59, 999);
  const TDateTime NewYear = EncodeDate(2024, 1, 1);
  EXPECT_EQ(IncMilliSecond(LastMs), NewYear);
  EXPECT_EQ(IncMilliSecond(NewYear, -1), LastMs);
  EXPECT_TRUE(IsDate(IncSecond(LastMs, 1), 2024, 1, 1, 0, 0, 0, 999));
  EXPECT_TRUE(IsDate(IncMinute(NewYear, -1), 2023, 12, 31, 23, 59));
  EXPECT_TRUE(IsDate(IncHour(EncodeDate(2024, 2, 28), 36), 2024, 2, 29, 12));
  EXPECT_TRUE(IsDate(IncDay(EncodeDate(1900, 2, 28)), 1900, 3, 1));
  EXPECT_TRUE(IsDate(IncWeek(EncodeDate(2024, 12, 28), 1), 2025, 1, 4));
}

TEST(DateUtils, PeriodBoundsUseIsoWeeksAndRealMonthLengths) {
  const TDateTime Wednesday = EncodeDateTime(2024, 1, 3, 15, 0, 0, 0);
  EXPECT_EQ(StartOfTheWeek(Wednesday), EncodeDate(2024, 1, 1));
  EXPECT_EQ(StartOfTheWeek(EncodeDate(2024, 1, 7)), EncodeDate(2024, 1, 1)); // a Sunday
  EXPECT_TRUE(IsDate(EndOfTheWeek(Wednesday), 2024, 1, 7, 23, 59, 59, 999));
  EXPECT_EQ(StartOfTheMonth(Wednesday), EncodeDate(2024, 1, 1));
  EXPECT_TRUE(IsDate(EndOfTheMonth(EncodeDate(2024, 2, 10)), 2024, 2, 29, 23, 59, 59, 999));
  EXPECT_TRUE(IsDate(EndOfTheMonth(EncodeDate(1900, 2, 10)), 1900, 2, 28, 23, 59, 59, 999));
  EXPECT_TRUE(IsDate(EndOfTheYear(Wednesday), 2024, 12, 31, 23, 59, 59, 999));
  EXPECT_EQ(StartOfTheWeek(EncodeDate(1, 1, 3)), EncodeDate(1, 1, 1));
}

TEST(DateUtils, RecodeReplacesOnlyTheFieldsGiven) {
  const TDateTime V = EncodeDateTime(2024, 2, 10, 13, 5, 9, 7);
  EXPECT_EQ(RecodeTime(V, 0, 0, 0, 0), EncodeDate(2024, 2, 10));
  EXPECT_TRUE(IsDate(RecodeDay(V, 29), 2024, 2, 29, 13, 5, 9, 7));
  EXPECT_TRUE(IsDate(RecodeDate(V, 1999, 12, 31), 1999, 12, 31, 13, 5, 9, 7));
  EXPECT_TRUE(IsDate(RecodeDateTime(V, RecodeLeaveFieldAsIs, 7, RecodeLeaveFieldAsIs, 0,
                                    RecodeLeaveFieldAsIs, 0, 0),
                     2024, 7, 10, 0, 5));
  EXPECT_EQ(test::MessageOf([&] { RecodeDay(V, 30); }), "Invalid argument to date encode");
  EXPECT_EQ(test::MessageOf([&] { RecodeHour(V, 24); }), "Invalid argument to time encode");
  TDateTime Out = 1;
  EXPECT_FALSE(TryRecodeDateTime(EncodeDate(2024, 2, 29), 2023, RecodeLeaveFieldAsIs,
                                 RecodeLeaveFieldAsIs, 0, 0, 0, 0, Out));
  EXPECT_EQ(Out, 1);
}

TEST(DateUtils, ValuesOutsideTheCalendarRaiseAClearError) {
  // MaxDateTime + 1e-8 rounds into year 10000.
  const double Bad[] = {test::NaN, test::Inf,       -test::Inf, 1e300,
                        -1e300,    MinDateTime - 1, 2958466.0,  MaxDateTime + 1e-8};
  for (double V : Bad) {
    EXPECT_THROW(DateParts(V), EConvertError) << V;
    EXPECT_THROW(DayOfWeek(V), EConvertError) << V;
    EXPECT_THROW(IncDay(V, 0), EConvertError) << V;
    EXPECT_THROW(StartOfTheMonth(V), EConvertError) << V;
  }
  EXPECT_EQ(test::MessageOf([] { YearOf(1e300); }), "'1e+300' is not a valid date and time");
  EXPECT_TRUE(IsDate(MinDateTime, 1, 1, 1));
  EXPECT_TRUE(IsDate(MaxDateTime, 9999, 12, 31, 23, 59, 59, 999));
  EXPECT_THROW(IncMilliSecond(MaxDateTime), EConvertError);
  EXPECT_THROW(IncDay(MinDateTime, -1), EConvertError);
  EXPECT_THROW(IncMonth(EncodeDate(9999, 12, 1)), EConvertError);
  EXPECT_THROW(IncYear(0, std::numeric_limits<int32_t>::max()), EConvertError);
  EXPECT_THROW(IncHour(0, std::numeric_limits<int64_t>::max()), EConvertError);
  EXPECT_THROW(IncMilliSecond(0, std::numeric_limits<int64_t>::min()), EConvertError);
  EXPECT_THROW(EndOfTheWeek(MaxDateTime), EConvertError); // that Sunday is in year 10000
  EXPECT_THROW(TimeStampToDateTime({MSecsPerDay, 1}), EConvertError);
}

} // namespace
} // namespace kx

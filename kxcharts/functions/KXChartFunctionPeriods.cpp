// The cutting of a source into periods: by position, by size, by range of dimension 0 and
// by calendar, each walk running the calculation in force once a period, in order.
//
// Every walk is written as a cursor that stands before a period (its first index and the
// number carried from the period before), so that the incremental mode can start a walk
// again at any period it recorded and come out where a walk from the start would.

#include "kxcharts/functions/KXChartFunction.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"

namespace kx {

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();
// The first period of the range and calendar walks ends this much short of the next start.
constexpr double OneMilliSecond = 1.0 / MSecsPerDay;

// A running end held as a double, used as an index: halves to the even neighbour.
int32_t IndexOf(double High) {
  return static_cast<int32_t>(std::nearbyint(High));
}

// The start of the calendar period that holds V; NaN when V is no date of the calendar.
TDateTime CalendarStart(TKXChartFunctionPeriod Period, TDateTime V) {
  constexpr int32_t AsIs = RecodeLeaveFieldAsIs;
  try {
    switch (Period) {
    case fpSecond: return RecodeMilliSecond(V, 0);
    case fpMinute: return RecodeDateTime(V, AsIs, AsIs, AsIs, AsIs, AsIs, 0, 0);
    case fpHour: return RecodeDateTime(V, AsIs, AsIs, AsIs, AsIs, 0, 0, 0);
    case fpDay: return StartOfTheDay(V);
    case fpWeek: return StartOfTheWeek(V);
    case fpMonth: return StartOfTheMonth(V);
    case fpYear: return StartOfTheYear(V);
    default: break;
    }
  } catch (const EConvertError&) {
  }
  return NaN;
}

// One period on. Where the calendar ends (year 9999) the period has no end, so that it
// takes every value left.
TDateTime CalendarNext(TKXChartFunctionPeriod Period, TDateTime S) {
  try {
    switch (Period) {
    case fpSecond: return IncSecond(S);
    case fpMinute: return IncMinute(S);
    case fpHour: return IncHour(S);
    case fpDay: return IncDay(S);
    case fpWeek: return IncWeek(S);
    case fpMonth: return IncMonth(S);
    case fpYear: return IncYear(S);
    default: break;
    }
  } catch (const EConvertError&) {
  }
  return Infinity;
}

// How far into the period that starts at S its stamp stands when stamps are centred.
double CalendarCentre(TKXChartFunctionPeriod Period, TDateTime S) {
  switch (Period) {
  case fpSecond: return 500.0 / MSecsPerDay;
  case fpMinute: return 30.0 / SecsPerDay;
  case fpHour: return 30.0 / MinsPerDay;
  case fpDay: return 0.5;
  case fpWeek: return 3.5;
  case fpMonth: {
    const int32_t N = DaysInMonth(S);
    return N / 2 + (N % 2 == 1 ? 0.5 : 0.0);
  }
  case fpYear: return IncMonth(0.0, 6);
  default: return 0.0;
  }
}

} // namespace

void TKXCustomChartFunction::DoFunction() {
  SetFunction();
  if (!FChartFunction) return;
  WalkPeriods(TPeriodCursor{}, PeriodStep());
}

double TKXCustomChartFunction::PeriodStep() {
  const double Fraction = std::min(FPeriodValue, 1.0);
  switch (FPeriod) {
  case fpValueCount:
  case fpAxisRange: return FPeriodValue;
  case fpPercentValues: return FSourceChart->Values()->Count() * Fraction;
  case fpPercentRange: {
    // An automatic axis that waits for the next paint finds its range first, so that a
    // source never painted is cut as one on the screen is.
    TKXChartAxis* Axis = FSourceChart->HorizontalAxis();
    if (!Axis) return 0.0;
    if (Axis->NeedAxisUpdate()) Axis->UpdateAxisValues();
    return (Axis->Maximum() - Axis->Minimum()) * Fraction;
  }
  default: return 0.0;
  }
}

void TKXCustomChartFunction::WalkPeriods(TPeriodCursor Cursor, double Step) {
  const TKXChartValues* V = FSourceChart->Values();
  const int32_t Count = V->Count();
  if (Cursor.First) FPeriodsStep = Step;
  if (Count == 0) return;
  const int32_t TimeDim = V->TimeDimension();
  switch (FPeriod) {
  case fpEachValue:
    for (; Cursor.Low < Count; ++Cursor.Low, Cursor.First = false)
      RunPeriod(Cursor, Cursor.Low,
                TimeDim != -1 ? V->Items(Cursor.Low)->GetValue(TimeDim) : Cursor.Low);
    break;
  case fpValueCount:
  case fpPercentValues:
    if (FPeriod == fpValueCount && !(Step >= 1)) break;
    while (Cursor.Low < Count) {
      double High;
      if (Step < 1) {
        // Running ends that grow by less than one each land on every index in turn: each
        // period is one value (never none, however the first end rounds).
        High = Cursor.Low;
      } else if (Cursor.First) {
        High = std::min(Step - 1, Count - 1.0);
      } else {
        High = Cursor.Carry;
        do
          High = std::min(High + Step, Count - 1.0);
        while (IndexOf(High) < Cursor.Low);
      }
      const int32_t Last = std::max(Cursor.Low, IndexOf(High));
      RunPeriod(Cursor, Last, MiddleStamp(Cursor.Low, Last));
      Cursor = {Last + 1, High, false};
    }
    break;
  case fpAxisRange:
  case fpPercentRange:
    if (Cursor.First) Cursor.Carry = V->Items(0)->GetValue(0);
    while (Cursor.Low < Count) {
      const double S = Cursor.Carry;
      const int32_t Last =
          GetPeriodIndex(FSourceChart, Cursor.Low, Cursor.First ? S + Step - OneMilliSecond : S + Step);
      TDateTime Stamp = S;
      if (FPeriod == fpPercentRange)
        Stamp = MiddleStamp(Cursor.Low, Last);
      else if (FCenterTimePeriod && TimeDim != -1)
        Stamp = CentreTime(Cursor.Low, Last);
      RunPeriod(Cursor, Last, Stamp);
      Cursor = {Last + 1, S + Step, false};
    }
    break;
  case fpAll: RunPeriod(Cursor, Count - 1, MiddleStamp(0, Count - 1)); break;
  default: // the calendar
    if (Cursor.First) {
      Cursor.Carry = CalendarStart(FPeriod, V->Items(0)->GetValue(0));
      // A first value that is no date has no period to start.
      if (std::isnan(Cursor.Carry)) break;
    }
    while (Cursor.Low < Count) {
      const double S = Cursor.Carry;
      const double Next = CalendarNext(FPeriod, S);
      const int32_t Last =
          GetPeriodIndex(FSourceChart, Cursor.Low, Cursor.First ? Next - OneMilliSecond : Next);
      RunPeriod(Cursor, Last, S + (FCenterTimePeriod ? CalendarCentre(FPeriod, S) : 0.0));
      Cursor = {Last + 1, Next, false};
    }
    break;
  }
}

void TKXCustomChartFunction::RunPeriod(const TPeriodCursor& Cursor, int32_t High,
                                       TDateTime TimeStamp) {
  if (FIncremental) FPeriods.push_back({Cursor, High, FTargetChart->Values()->Count()});
  FChartFunction(FSourceChart, FTargetChart, Cursor.Low, High, TimeStamp, FSourceDim, FTargetDim);
}

TDateTime TKXCustomChartFunction::MiddleStamp(int32_t Low, int32_t High) const {
  if (FSourceChart->Values()->TimeDimension() != -1) return CentreTime(Low, High);
  return Low + (High - Low) / 2.0;
}

TDateTime TKXCustomChartFunction::CentreTime(int32_t Low, int32_t High) const {
  const TKXChartValues* V = FSourceChart->Values();
  const int32_t D = V->TimeDimension();
  const double LowD = V->Items(Low)->GetValue(D);
  return V->Items(Low)->GetValue(0) + (V->Items(High)->GetValue(D) - LowD) / 2;
}

} // namespace kx

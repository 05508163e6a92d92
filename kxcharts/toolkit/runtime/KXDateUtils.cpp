#include "kxcharts/toolkit/runtime/KXDateUtils.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <string>

#include "kxcharts/toolkit/runtime/KXMath.h"
#include "kxcharts/toolkit/runtime/KXSysUtils.h"

namespace kx {

namespace {

constexpr int32_t MaxStampDate = DateDelta + 2958465; // 9999-12-31
constexpr int64_t MSecsPerDay64 = MSecsPerDay;

const char* const SDateEncodeError = "Invalid argument to date encode";
const char* const STimeEncodeError = "Invalid argument to time encode";

[[noreturn]] void InvalidDateTime(double Value) {
  std::string Text;
  if (std::isnan(Value)) {
    Text = "NAN";
  } else if (std::isinf(Value)) {
    Text = Value < 0 ? "-INF" : "INF";
  } else {
    char Buf[32];
    Text.assign(Buf, std::to_chars(Buf, Buf + sizeof Buf, Value).ptr);
  }
  throw EConvertError("'" + Text + "' is not a valid date and time");
}

// Days since 1970-01-01 of a proleptic Gregorian date, and back (eras of 400 years).
constexpr int64_t DaysFromCivil(int64_t Y, int64_t M, int64_t D) {
  Y -= M <= 2;
  const int64_t Era = (Y >= 0 ? Y : Y - 399) / 400;
  const int64_t YoE = Y - Era * 400;
  const int64_t DoY = (153 * (M + (M > 2 ? -3 : 9)) + 2) / 5 + D - 1;
  const int64_t DoE = YoE * 365 + YoE / 4 - YoE / 100 + DoY;
  return Era * 146097 + DoE - 719468;
}

void CivilFromDays(int64_t Z, int32_t& Year, int32_t& Month, int32_t& Day) {
  Z += 719468;
  const int64_t Era = (Z >= 0 ? Z : Z - 146096) / 146097;
  const int64_t DoE = Z - Era * 146097;
  const int64_t YoE = (DoE - DoE / 1460 + DoE / 36524 - DoE / 146096) / 365;
  const int64_t DoY = DoE - (365 * YoE + YoE / 4 - YoE / 100);
  const int64_t MP = (5 * DoY + 2) / 153;
  Day = static_cast<int32_t>(DoY - (153 * MP + 2) / 5 + 1);
  Month = static_cast<int32_t>(MP < 10 ? MP + 3 : MP - 9);
  Year = static_cast<int32_t>(YoE + Era * 400 + (Month <= 2));
}

// TTimeStamp.Date of 1970-01-01.
constexpr int64_t UnixStampDate = DateDelta + UnixDateDelta;
static_assert(DaysFromCivil(1899, 12, 30) == -UnixDateDelta);
static_assert(DaysFromCivil(1, 1, 1) + UnixStampDate == 1);

int32_t StampDateOf(int32_t Year, int32_t Month, int32_t Day) {
  return static_cast<int32_t>(DaysFromCivil(Year, Month, Day) + UnixStampDate);
}

void DecodeStampDate(int32_t StampDate, int32_t& Year, int32_t& Month, int32_t& Day) {
  CivilFromDays(StampDate - UnixStampDate, Year, Month, Day);
}

bool ValidDate(int32_t Year, int32_t Month, int32_t Day) {
  return Year >= 1 && Year <= 9999 && Month >= 1 && Month <= 12 && Day >= 1 &&
         Day <= DaysInAMonth(Year, Month);
}

bool ValidTime(int32_t Hour, int32_t Min, int32_t Sec, int32_t MSec) {
  return Hour >= 0 && Hour < HoursPerDay && Min >= 0 && Min < MinsPerHour && Sec >= 0 &&
         Sec < SecsPerMin && MSec >= 0 && MSec < MSecsPerSec;
}

// Milliseconds since 0001-01-01 minus one day: one number to step in, never negative.
int64_t StampToMSecs(const TTimeStamp& S) {
  return S.Date * MSecsPerDay64 + S.Time;
}

TDateTime MSecsToDateTime(int64_t MSecs, TDateTime Original) {
  const int64_t Date = MSecs / MSecsPerDay64;
  if (MSecs < 0 || Date < 1 || Date > MaxStampDate) InvalidDateTime(Original);
  return TimeStampToDateTime(
      {static_cast<int32_t>(MSecs % MSecsPerDay64), static_cast<int32_t>(Date)});
}

// Steps by Count units of UnitMSecs milliseconds, refusing any overflow on the way.
TDateTime StepMSecs(TDateTime Value, int64_t Count, int64_t UnitMSecs) {
  int64_t Delta = 0, Result = 0;
  if (__builtin_mul_overflow(Count, UnitMSecs, &Delta) ||
      __builtin_add_overflow(StampToMSecs(DateTimeToTimeStamp(Value)), Delta, &Result))
    InvalidDateTime(Value);
  return MSecsToDateTime(Result, Value);
}

// A date (whole days) joined with a time of day, by the sign rule of TDateTime.
TDateTime Combine(TDateTime Date, TDateTime Time) {
  return Date >= 0 ? Date + Time : Date - Time;
}

TDateTime StampDateToDateTime(int32_t StampDate) {
  return TimeStampToDateTime({0, StampDate});
}

constexpr TDateTime LastMilliSecond = (MSecsPerDay - 1) / double(MSecsPerDay);

} // namespace

// --- Time stamps ---

TTimeStamp DateTimeToTimeStamp(TDateTime Value) {
  // The bound keeps the product far inside the range where Round is exact and defined.
  if (!(std::fabs(Value) < 1e7)) InvalidDateTime(Value);
  const int64_t MSecs = Round(Value * MSecsPerDay);
  const int64_t Days = MSecs / MSecsPerDay64; // towards zero: days count back from 0
  const int64_t Date = Days + DateDelta;
  if (Date < 1 || Date > MaxStampDate) InvalidDateTime(Value);
  return {static_cast<int32_t>((MSecs < 0 ? -MSecs : MSecs) % MSecsPerDay64),
          static_cast<int32_t>(Date)};
}

TDateTime TimeStampToDateTime(const TTimeStamp& Stamp) {
  if (Stamp.Date < 1 || Stamp.Date > MaxStampDate || Stamp.Time < 0 || Stamp.Time >= MSecsPerDay)
    throw EConvertError("Invalid time stamp " + std::to_string(Stamp.Date) + ", " +
                        std::to_string(Stamp.Time));
  return Combine(Stamp.Date - DateDelta, Stamp.Time / double(MSecsPerDay));
}

// --- Encoding and decoding ---

bool IsLeapYear(int32_t Year) {
  return Year % 4 == 0 && (Year % 100 != 0 || Year % 400 == 0);
}

int32_t DaysInAMonth(int32_t Year, int32_t Month) {
  static constexpr int32_t Days[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (Month < 1 || Month > 12) throw EConvertError(SDateEncodeError);
  return Month == 2 && IsLeapYear(Year) ? 29 : Days[Month - 1];
}

int32_t DaysInAYear(int32_t Year) {
  return IsLeapYear(Year) ? 366 : 365;
}

bool TryEncodeDate(int32_t Year, int32_t Month, int32_t Day, TDateTime& Date) {
  if (!ValidDate(Year, Month, Day)) return false;
  Date = StampDateOf(Year, Month, Day) - DateDelta;
  return true;
}

bool TryEncodeTime(int32_t Hour, int32_t Min, int32_t Sec, int32_t MSec, TDateTime& Time) {
  if (!ValidTime(Hour, Min, Sec, MSec)) return false;
  Time =
      (((Hour * MinsPerHour + Min) * SecsPerMin + Sec) * MSecsPerSec + MSec) / double(MSecsPerDay);
  return true;
}

bool TryEncodeDateTime(int32_t Year, int32_t Month, int32_t Day, int32_t Hour, int32_t Min,
                       int32_t Sec, int32_t MSec, TDateTime& Value) {
  TDateTime Date, Time;
  if (!TryEncodeDate(Year, Month, Day, Date) || !TryEncodeTime(Hour, Min, Sec, MSec, Time))
    return false;
  Value = Combine(Date, Time);
  return true;
}

TDateTime EncodeDate(int32_t Year, int32_t Month, int32_t Day) {
  TDateTime Result;
  if (!TryEncodeDate(Year, Month, Day, Result)) throw EConvertError(SDateEncodeError);
  return Result;
}

TDateTime EncodeTime(int32_t Hour, int32_t Min, int32_t Sec, int32_t MSec) {
  TDateTime Result;
  if (!TryEncodeTime(Hour, Min, Sec, MSec, Result)) throw EConvertError(STimeEncodeError);
  return Result;
}

TDateTime EncodeDateTime(int32_t Year, int32_t Month, int32_t Day, int32_t Hour, int32_t Min,
                         int32_t Sec, int32_t MSec) {
  return Combine(EncodeDate(Year, Month, Day), EncodeTime(Hour, Min, Sec, MSec));
}

void DecodeDate(TDateTime Value, int32_t& Year, int32_t& Month, int32_t& Day) {
  DecodeStampDate(DateTimeToTimeStamp(Value).Date, Year, Month, Day);
}

bool DecodeDateFully(TDateTime Value, int32_t& Year, int32_t& Month, int32_t& Day, int32_t& DOW) {
  const TTimeStamp S = DateTimeToTimeStamp(Value);
  DecodeStampDate(S.Date, Year, Month, Day);
  DOW = S.Date % 7 + 1;
  return IsLeapYear(Year);
}

void DecodeTime(TDateTime Value, int32_t& Hour, int32_t& Min, int32_t& Sec, int32_t& MSec) {
  int32_t T = DateTimeToTimeStamp(Value).Time;
  MSec = T % MSecsPerSec;
  T /= MSecsPerSec;
  Sec = T % SecsPerMin;
  T /= SecsPerMin;
  Min = T % MinsPerHour;
  Hour = T / MinsPerHour;
}

void DecodeDateTime(TDateTime Value, int32_t& Year, int32_t& Month, int32_t& Day, int32_t& Hour,
                    int32_t& Min, int32_t& Sec, int32_t& MSec) {
  DecodeDate(Value, Year, Month, Day);
  DecodeTime(Value, Hour, Min, Sec, MSec);
}

// --- Parts of a moment ---

TDateTime DateOf(TDateTime Value) {
  return StampDateToDateTime(DateTimeToTimeStamp(Value).Date);
}

TDateTime TimeOf(TDateTime Value) {
  return DateTimeToTimeStamp(Value).Time / double(MSecsPerDay);
}

int32_t YearOf(TDateTime Value) {
  int32_t Y, M, D;
  DecodeDate(Value, Y, M, D);
  return Y;
}

int32_t MonthOf(TDateTime Value) {
  int32_t Y, M, D;
  DecodeDate(Value, Y, M, D);
  return M;
}

int32_t DayOf(TDateTime Value) {
  int32_t Y, M, D;
  DecodeDate(Value, Y, M, D);
  return D;
}

int32_t HourOf(TDateTime Value) {
  return DateTimeToTimeStamp(Value).Time / (MSecsPerDay / HoursPerDay);
}

int32_t MinuteOf(TDateTime Value) {
  return DateTimeToTimeStamp(Value).Time / (SecsPerMin * MSecsPerSec) % MinsPerHour;
}

int32_t SecondOf(TDateTime Value) {
  return DateTimeToTimeStamp(Value).Time / MSecsPerSec % SecsPerMin;
}

int32_t MilliSecondOf(TDateTime Value) {
  return DateTimeToTimeStamp(Value).Time % MSecsPerSec;
}

bool IsInLeapYear(TDateTime Value) {
  return IsLeapYear(YearOf(Value));
}

int32_t DaysInMonth(TDateTime Value) {
  int32_t Y, M, D;
  DecodeDate(Value, Y, M, D);
  return DaysInAMonth(Y, M);
}

int32_t DaysInYear(TDateTime Value) {
  return DaysInAYear(YearOf(Value));
}

int32_t DayOfWeek(TDateTime Value) {
  return DateTimeToTimeStamp(Value).Date % 7 + 1;
}

int32_t DayOfTheWeek(TDateTime Value) {
  return (DateTimeToTimeStamp(Value).Date - 1) % 7 + 1;
}

int32_t DayOfTheYear(TDateTime Value) {
  int32_t Y, M, D;
  const int32_t Date = DateTimeToTimeStamp(Value).Date;
  DecodeStampDate(Date, Y, M, D);
  return Date - StampDateOf(Y, 1, 1) + 1;
}

// --- Stepping ---

TDateTime IncMilliSecond(TDateTime Value, int64_t NumberOfMilliSeconds) {
  return StepMSecs(Value, NumberOfMilliSeconds, 1);
}

TDateTime IncSecond(TDateTime Value, int64_t NumberOfSeconds) {
  return StepMSecs(Value, NumberOfSeconds, MSecsPerSec);
}

TDateTime IncMinute(TDateTime Value, int64_t NumberOfMinutes) {
  return StepMSecs(Value, NumberOfMinutes, int64_t(SecsPerMin) * MSecsPerSec);
}

TDateTime IncHour(TDateTime Value, int64_t NumberOfHours) {
  return StepMSecs(Value, NumberOfHours, int64_t(MinsPerHour) * SecsPerMin * MSecsPerSec);
}

TDateTime IncDay(TDateTime Value, int32_t NumberOfDays) {
  return StepMSecs(Value, NumberOfDays, MSecsPerDay64);
}

TDateTime IncWeek(TDateTime Value, int32_t NumberOfWeeks) {
  return StepMSecs(Value, NumberOfWeeks, 7 * MSecsPerDay64);
}

TDateTime IncMonth(TDateTime Value, int32_t NumberOfMonths) {
  const TTimeStamp S = DateTimeToTimeStamp(Value);
  int32_t Y, M, D;
  DecodeStampDate(S.Date, Y, M, D);
  const int64_t Months = int64_t(Y) * 12 + (M - 1) + NumberOfMonths;
  if (Months < 12 || Months >= 10000 * 12) throw EConvertError(SDateEncodeError);
  Y = static_cast<int32_t>(Months / 12);
  M = static_cast<int32_t>(Months % 12 + 1);
  D = Min(D, DaysInAMonth(Y, M));
  return TimeStampToDateTime({S.Time, StampDateOf(Y, M, D)});
}

TDateTime IncYear(TDateTime Value, int32_t NumberOfYears) {
  if (NumberOfYears > 10000 || NumberOfYears < -10000) throw EConvertError(SDateEncodeError);
  return IncMonth(Value, NumberOfYears * 12);
}

// --- Replacing fields ---

namespace {

// Which encoder rejected a recode, so that the message names the right half.
enum TRecodeFailure : uint8_t { rfNone, rfDate, rfTime };

TRecodeFailure Recode(TDateTime Value, int32_t Year, int32_t Month, int32_t Day, int32_t Hour,
                      int32_t Minute, int32_t Second, int32_t MilliSecond, TDateTime& Result) {
  int32_t Y, M, D, H, N, S, MS;
  DecodeDateTime(Value, Y, M, D, H, N, S, MS);
  const auto Pick = [](int32_t New, int32_t Old) {
    return New == RecodeLeaveFieldAsIs ? Old : New;
  };
  TDateTime Date, Time;
  if (!TryEncodeDate(Pick(Year, Y), Pick(Month, M), Pick(Day, D), Date)) return rfDate;
  if (!TryEncodeTime(Pick(Hour, H), Pick(Minute, N), Pick(Second, S), Pick(MilliSecond, MS), Time))
    return rfTime;
  Result = Combine(Date, Time);
  return rfNone;
}

} // namespace

bool TryRecodeDateTime(TDateTime Value, int32_t Year, int32_t Month, int32_t Day, int32_t Hour,
                       int32_t Minute, int32_t Second, int32_t MilliSecond, TDateTime& Result) {
  return Recode(Value, Year, Month, Day, Hour, Minute, Second, MilliSecond, Result) == rfNone;
}

TDateTime RecodeDateTime(TDateTime Value, int32_t Year, int32_t Month, int32_t Day, int32_t Hour,
                         int32_t Minute, int32_t Second, int32_t MilliSecond) {
  TDateTime Result = 0;
  switch (Recode(Value, Year, Month, Day, Hour, Minute, Second, MilliSecond, Result)) {
  case rfDate:
    throw EConvertError(SDateEncodeError);
  case rfTime:
    throw EConvertError(STimeEncodeError);
  case rfNone:
    break;
  }
  return Result;
}

constexpr int32_t AsIs = RecodeLeaveFieldAsIs;

TDateTime RecodeYear(TDateTime Value, int32_t Year) {
  return RecodeDateTime(Value, Year, AsIs, AsIs, AsIs, AsIs, AsIs, AsIs);
}

TDateTime RecodeMonth(TDateTime Value, int32_t Month) {
  return RecodeDateTime(Value, AsIs, Month, AsIs, AsIs, AsIs, AsIs, AsIs);
}

TDateTime RecodeDay(TDateTime Value, int32_t Day) {
  return RecodeDateTime(Value, AsIs, AsIs, Day, AsIs, AsIs, AsIs, AsIs);
}

TDateTime RecodeHour(TDateTime Value, int32_t Hour) {
  return RecodeDateTime(Value, AsIs, AsIs, AsIs, Hour, AsIs, AsIs, AsIs);
}

TDateTime RecodeMinute(TDateTime Value, int32_t Minute) {
  return RecodeDateTime(Value, AsIs, AsIs, AsIs, AsIs, Minute, AsIs, AsIs);
}

TDateTime RecodeSecond(TDateTime Value, int32_t Second) {
  return RecodeDateTime(Value, AsIs, AsIs, AsIs, AsIs, AsIs, Second, AsIs);
}

TDateTime RecodeMilliSecond(TDateTime Value, int32_t MilliSecond) {
  return RecodeDateTime(Value, AsIs, AsIs, AsIs, AsIs, AsIs, AsIs, MilliSecond);
}

TDateTime RecodeDate(TDateTime Value, int32_t Year, int32_t Month, int32_t Day) {
  return RecodeDateTime(Value, Year, Month, Day, AsIs, AsIs, AsIs, AsIs);
}

TDateTime RecodeTime(TDateTime Value, int32_t Hour, int32_t Minute, int32_t Second,
                     int32_t MilliSecond) {
  return RecodeDateTime(Value, AsIs, AsIs, AsIs, Hour, Minute, Second, MilliSecond);
}

// --- Period bounds ---

namespace {

TDateTime EndOfStampDate(int32_t StampDate) {
  return Combine(StampDate - DateDelta, LastMilliSecond);
}

} // namespace

TDateTime StartOfTheDay(TDateTime Value) {
  return DateOf(Value);
}

TDateTime EndOfTheDay(TDateTime Value) {
  return EndOfStampDate(DateTimeToTimeStamp(Value).Date);
}

TDateTime StartOfTheWeek(TDateTime Value) {
  const int32_t Date = DateTimeToTimeStamp(Value).Date;
  return StampDateToDateTime(Date - (Date - 1) % 7);
}

TDateTime EndOfTheWeek(TDateTime Value) {
  const int32_t Date = DateTimeToTimeStamp(Value).Date;
  const int32_t Sunday = Date - (Date - 1) % 7 + 6;
  if (Sunday > MaxStampDate) InvalidDateTime(Value);
  return EndOfStampDate(Sunday);
}

TDateTime StartOfTheMonth(TDateTime Value) {
  int32_t Y, M, D;
  DecodeDate(Value, Y, M, D);
  return StampDateToDateTime(StampDateOf(Y, M, 1));
}

TDateTime EndOfTheMonth(TDateTime Value) {
  int32_t Y, M, D;
  DecodeDate(Value, Y, M, D);
  return EndOfStampDate(StampDateOf(Y, M, DaysInAMonth(Y, M)));
}

TDateTime StartOfTheYear(TDateTime Value) {
  return StampDateToDateTime(StampDateOf(YearOf(Value), 1, 1));
}

TDateTime EndOfTheYear(TDateTime Value) {
  return EndOfStampDate(StampDateOf(YearOf(Value), 12, 31));
}

// --- ISO 8601 text ---

std::string DateTimeToISO(TDateTime Value) {
  if (!std::isfinite(Value) || std::fabs(Value) > 3.0e6) return std::string();
  // A negative TDateTime counts whole days back from day 0, and its fraction is the time
  // of that day, not a step further back.
  long long Day = Value >= 0 ? static_cast<long long>(std::floor(Value))
                             : static_cast<long long>(std::ceil(Value));
  const double Frac = std::fabs(Value - static_cast<double>(Day));
  long long Ms = std::llround(Frac * MSecsPerDay64);
  if (Ms >= MSecsPerDay64) {
    Ms -= MSecsPerDay64;
    ++Day;
  }
  int32_t Y, M, D;
  CivilFromDays(Day - UnixDateDelta, Y, M, D);
  if (Y < 1 || Y > 9999) return std::string();
  char Buf[64];
  std::snprintf(Buf, sizeof(Buf), "%04d-%02d-%02dT%02lld:%02lld:%02lld.%03lld", Y, M, D,
                Ms / 3600000, Ms / 60000 % 60, Ms / 1000 % 60, Ms % 1000);
  return Buf;
}

std::optional<TDateTime> ISOToDateTime(std::string_view T) {
  auto Num = [&](size_t Pos, size_t Len, unsigned& Out) {
    if (Pos + Len > T.size()) return false;
    auto R = std::from_chars(T.data() + Pos, T.data() + Pos + Len, Out);
    return R.ec == std::errc() && R.ptr == T.data() + Pos + Len;
  };
  unsigned Y, M, D, H = 0, N = 0, S = 0, Ms = 0;
  if (T.size() < 10 || T[4] != '-' || T[7] != '-' || !Num(0, 4, Y) || !Num(5, 2, M) ||
      !Num(8, 2, D))
    return std::nullopt;
  if (Y < 1 || M < 1 || M > 12 || D < 1 ||
      D > static_cast<unsigned>(DaysInAMonth(static_cast<int32_t>(Y), static_cast<int32_t>(M))))
    return std::nullopt;
  if (T.size() > 10) {
    if (T.size() < 19 || T[10] != 'T' || T[13] != ':' || T[16] != ':' || !Num(11, 2, H) ||
        !Num(14, 2, N) || !Num(17, 2, S) || H > 23 || N > 59 || S > 59)
      return std::nullopt;
    if (T.size() > 19) {
      const size_t Digits = T.size() - 20;
      if (T[19] != '.' || Digits < 1 || Digits > 3 || !Num(20, Digits, Ms)) return std::nullopt;
      for (size_t K = Digits; K < 3; ++K)
        Ms *= 10;
    }
  }
  const int64_t Day = DaysFromCivil(Y, M, D) + UnixDateDelta;
  const double Time = static_cast<double>(((H * 60 + N) * 60 + S) * 1000LL + Ms) /
                      static_cast<double>(MSecsPerDay64);
  return Day >= 0 ? static_cast<double>(Day) + Time : static_cast<double>(Day) - Time;
}

} // namespace kx

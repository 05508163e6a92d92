#pragma once
// Dates and times as TDateTime: days since 1899-12-30, with the time of day as the
// fraction. Before 1899-12-30 the integer part counts days back and the fraction is still
// the time of day, so -1.25 is 1899-12-29 06:00 (and -0.25 the same moment as 0.25).
// The calendar is the proleptic Gregorian one, years 1 to 9999; times resolve to the
// millisecond (a value is rounded to the nearest one before it is taken apart).
//
// Every operation that reads a TDateTime raises EConvertError ("'X' is not a valid date
// and time") for a value outside 0001-01-01 .. 9999-12-31 23:59:59.999, NaN and the
// infinities included, and every operation whose result would leave that range raises
// likewise. Invalid parts given to an encoder raise EConvertError with "Invalid argument
// to date encode" or "Invalid argument to time encode".

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kxcharts/toolkit/runtime/KXSysUtils.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

// --- Constants ---

inline constexpr int32_t HoursPerDay = 24;
inline constexpr int32_t MinsPerHour = 60;
inline constexpr int32_t SecsPerMin = 60;
inline constexpr int32_t MSecsPerSec = 1000;
inline constexpr int32_t MinsPerDay = HoursPerDay * MinsPerHour;
inline constexpr int32_t SecsPerDay = MinsPerDay * SecsPerMin;
inline constexpr int32_t MSecsPerDay = SecsPerDay * MSecsPerSec;
// TTimeStamp.Date of 1899-12-30 (0001-01-01 is day 1).
inline constexpr int32_t DateDelta = 693594;
// TDateTime of 1970-01-01.
inline constexpr int32_t UnixDateDelta = 25569;
// 0001-01-01 00:00 and 9999-12-31 23:59:59.999.
inline constexpr TDateTime MinDateTime = -693593.0;
inline constexpr TDateTime MaxDateTime = 2958465.0 + 86399999.0 / 86400000.0;
// A Recode argument with this value keeps the field as it is.
inline constexpr int32_t RecodeLeaveFieldAsIs = 65535;

// A moment as whole numbers: milliseconds since midnight, and days since 0001-01-01 plus
// one (so 0001-01-01 is 1, a Monday).
struct TTimeStamp {
  int32_t Time = 0;
  int32_t Date = 0;
  friend constexpr bool operator==(const TTimeStamp&, const TTimeStamp&) = default;
};

TTimeStamp DateTimeToTimeStamp(TDateTime Value);
// Raises EConvertError for a Date outside 1..3652059 or a Time outside one day.
TDateTime TimeStampToDateTime(const TTimeStamp& Stamp);

// --- Encoding and decoding ---

bool IsLeapYear(int32_t Year);
// Days of a month; raises EConvertError for a month outside 1..12.
int32_t DaysInAMonth(int32_t Year, int32_t Month);
int32_t DaysInAYear(int32_t Year);

bool TryEncodeDate(int32_t Year, int32_t Month, int32_t Day, TDateTime& Date);
bool TryEncodeTime(int32_t Hour, int32_t Min, int32_t Sec, int32_t MSec, TDateTime& Time);
bool TryEncodeDateTime(int32_t Year, int32_t Month, int32_t Day, int32_t Hour, int32_t Min,
                       int32_t Sec, int32_t MSec, TDateTime& Value);
TDateTime EncodeDate(int32_t Year, int32_t Month, int32_t Day);
// Hour 0..23, Min and Sec 0..59, MSec 0..999.
TDateTime EncodeTime(int32_t Hour, int32_t Min, int32_t Sec, int32_t MSec);
TDateTime EncodeDateTime(int32_t Year, int32_t Month, int32_t Day, int32_t Hour, int32_t Min,
                         int32_t Sec, int32_t MSec);

void DecodeDate(TDateTime Value, int32_t& Year, int32_t& Month, int32_t& Day);
// Also gives the day of the week (1 = Sunday); answers whether the year is a leap year.
bool DecodeDateFully(TDateTime Value, int32_t& Year, int32_t& Month, int32_t& Day, int32_t& DOW);
void DecodeTime(TDateTime Value, int32_t& Hour, int32_t& Min, int32_t& Sec, int32_t& MSec);
void DecodeDateTime(TDateTime Value, int32_t& Year, int32_t& Month, int32_t& Day, int32_t& Hour,
                    int32_t& Min, int32_t& Sec, int32_t& MSec);

// --- Parts of a moment ---

// The day at 00:00, and the time of day alone (always from 0 up to, not including, 1).
TDateTime DateOf(TDateTime Value);
TDateTime TimeOf(TDateTime Value);
int32_t YearOf(TDateTime Value);
int32_t MonthOf(TDateTime Value);
int32_t DayOf(TDateTime Value);
int32_t HourOf(TDateTime Value);
int32_t MinuteOf(TDateTime Value);
int32_t SecondOf(TDateTime Value);
int32_t MilliSecondOf(TDateTime Value);
bool IsInLeapYear(TDateTime Value);
int32_t DaysInMonth(TDateTime Value);
int32_t DaysInYear(TDateTime Value);
// 1 = Sunday .. 7 = Saturday.
int32_t DayOfWeek(TDateTime Value);
// ISO: 1 = Monday .. 7 = Sunday.
int32_t DayOfTheWeek(TDateTime Value);
// 1 for the first of January.
int32_t DayOfTheYear(TDateTime Value);

// --- Stepping ---
//
// Steps keep the time of day (to the millisecond) and work across 1899-12-30 as across
// any other day.

TDateTime IncMilliSecond(TDateTime Value, int64_t NumberOfMilliSeconds = 1);
TDateTime IncSecond(TDateTime Value, int64_t NumberOfSeconds = 1);
TDateTime IncMinute(TDateTime Value, int64_t NumberOfMinutes = 1);
TDateTime IncHour(TDateTime Value, int64_t NumberOfHours = 1);
TDateTime IncDay(TDateTime Value, int32_t NumberOfDays = 1);
TDateTime IncWeek(TDateTime Value, int32_t NumberOfWeeks = 1);
// Moves by calendar months; a day past the end of the new month becomes its last day
// (January 31 plus one month is February 28 or 29).
TDateTime IncMonth(TDateTime Value, int32_t NumberOfMonths = 1);
// Twelve months per year, so February 29 plus one year is February 28.
TDateTime IncYear(TDateTime Value, int32_t NumberOfYears = 1);

// --- Replacing fields ---
//
// Each field equal to RecodeLeaveFieldAsIs stays as it is. A result that is no valid date
// or time raises EConvertError (Try... answers false instead).

bool TryRecodeDateTime(TDateTime Value, int32_t Year, int32_t Month, int32_t Day, int32_t Hour,
                       int32_t Minute, int32_t Second, int32_t MilliSecond, TDateTime& Result);
TDateTime RecodeDateTime(TDateTime Value, int32_t Year, int32_t Month, int32_t Day, int32_t Hour,
                         int32_t Minute, int32_t Second, int32_t MilliSecond);
TDateTime RecodeYear(TDateTime Value, int32_t Year);
TDateTime RecodeMonth(TDateTime Value, int32_t Month);
TDateTime RecodeDay(TDateTime Value, int32_t Day);
TDateTime RecodeHour(TDateTime Value, int32_t Hour);
TDateTime RecodeMinute(TDateTime Value, int32_t Minute);
TDateTime RecodeSecond(TDateTime Value, int32_t Second);
TDateTime RecodeMilliSecond(TDateTime Value, int32_t MilliSecond);
TDateTime RecodeDate(TDateTime Value, int32_t Year, int32_t Month, int32_t Day);
TDateTime RecodeTime(TDateTime Value, int32_t Hour, int32_t Minute, int32_t Second,
                     int32_t MilliSecond);

// --- Period bounds ---
//
// Starts are at 00:00:00.000, ends at 23:59:59.999. Weeks are ISO weeks, Monday to Sunday.

TDateTime StartOfTheDay(TDateTime Value);
TDateTime EndOfTheDay(TDateTime Value);
TDateTime StartOfTheWeek(TDateTime Value);
TDateTime EndOfTheWeek(TDateTime Value);
TDateTime StartOfTheMonth(TDateTime Value);
TDateTime EndOfTheMonth(TDateTime Value);
TDateTime StartOfTheYear(TDateTime Value);
TDateTime EndOfTheYear(TDateTime Value);

// --- ISO 8601 text ---
//
// The text stored forms use for dates. Unlike the operations above these raise nothing:
// a value or a text that is no moment of years 1 to 9999 gives an empty text or nothing.

// Days since 1899-12-30 as "yyyy-mm-ddThh:nn:ss.zzz" (milliseconds rounded).
std::string DateTimeToISO(TDateTime Value);
// The text DateTimeToISO writes, with 0 to 3 digits of milliseconds, or a date alone.
std::optional<TDateTime> ISOToDateTime(std::string_view Text);

} // namespace kx

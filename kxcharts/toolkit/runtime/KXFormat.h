#pragma once
// Numbers and dates as text, and text as numbers, with fixed English settings: the output
// never depends on the machine's locale.
//
// How numbers are rounded. A double is first taken as its shortest decimal form that
// reads back as the same double (0.1 is "0.1", not 0.1000000000000000055511151231257827),
// and that decimal form is rounded half away from zero to the digits asked for. So
// FormatFloat("0.00", 1.005) is "1.01" and FormatFloat("0", 2.5) is "3", as a person
// reading the number expects. (Round, in KXMath, rounds halves to even; it is a different
// operation.) NaN is "NAN", the infinities "INF" and "-INF"; -0.0 is written as 0.

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "kxcharts/toolkit/runtime/KXSysUtils.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

// --- Settings ---

// The one set of settings every formatter here uses.
struct TFormatSettings {
  char DecimalSeparator = '.';
  char ThousandSeparator = ',';
  char DateSeparator = '/';
  char TimeSeparator = ':';
  std::string_view ShortDateFormat = "m/d/yyyy";
  std::string_view LongDateFormat = "dddd, mmmm d, yyyy";
  std::string_view ShortTimeFormat = "h:nn AMPM";
  std::string_view LongTimeFormat = "h:nn:ss AMPM";
  std::string_view TimeAMString = "AM";
  std::string_view TimePMString = "PM";
  std::string_view CurrencyString = "$";
  // Index 0 is January / Sunday.
  std::string_view ShortMonthNames[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  std::string_view LongMonthNames[12] = {"January",   "February", "March",    "April",
                                         "May",       "June",     "July",     "August",
                                         "September", "October",  "November", "December"};
  std::string_view ShortDayNames[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  std::string_view LongDayNames[7] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                      "Thursday", "Friday", "Saturday"};
};
inline constexpr TFormatSettings FormatSettings{};

// --- Numbers to text ---

enum TFloatFormat : uint8_t { ffGeneral, ffExponent, ffFixed, ffNumber, ffCurrency };

// Precision (significant digits, 1..18) and Digits per format:
// - ffGeneral: the shorter of fixed and scientific, trailing zeros removed; scientific when
//   the number has more than Precision integer digits or is below 0.0001. Digits is the
//   least number of exponent digits (0..4); the exponent has a sign only when negative
//   ("1E20", "1.5E-5").
// - ffExponent: "-d.ddddE+dd" with Precision digits in all, Digits (0..4) exponent digits
//   at least, the exponent sign always written.
// - ffFixed: "-ddd.dd" with exactly Digits (0..18) decimals; ffNumber adds thousands
//   separators; ffCurrency is ffNumber as "$1,234.50" and "($1,234.50)". A number with more
//   integer digits than Precision is written as ffGeneral.
std::string FloatToStrF(double Value, TFloatFormat Format, int32_t Precision, int32_t Digits);
// ffGeneral with 15 digits: "0.1", "1234.5", "1E15", "1E-5", "NAN".
std::string FloatToStr(double Value);

// Formats Value by a picture of up to three sections separated by ';': for positive
// values, for negative values, for zero. A missing or empty negative or zero section uses
// the first; the negative section writes no minus sign of its own. A value that rounds to
// zero in its section is written as zero (with the zero section when there is one, else
// the first) and without a sign. In a section:
//   0  a digit, or 0 when the number has none there      #  a digit, or nothing
//   .  the decimal point (written only when decimals follow)
//   ,  thousands separators (anywhere in the section; the character itself is not written)
//   E+ E- e+ e-  scientific notation; up to four 0 after it give the least exponent digits,
//      E+ always writes the exponent's sign, E- only a minus
//   'text' "text"  written as it stands;  any other character is written as it stands.
// Integer digits beyond the placeholders all go at the first one; decimals beyond them are
// rounded; a section without placeholders writes only its text (a zero section "'none'"). An empty
// picture (or empty first section) gives FloatToStr; so does a number with more than 18 integer
// digits in a picture without exponent (1e308 with "#,##0" is "1E308"). A picture that begins with
// '%' is read as a Format string with Value as its one argument, so FormatFloat("%.4f", 2.5) is
// "2.5000".
std::string FormatFloat(std::string_view Format, double Value);

// Decimal digits of any integer type, with a '-' for negatives.
template <std::integral T>
requires(!std::same_as<T, bool>) std::string IntToStr(T Value) {
  return std::to_string(Value);
}
// Upper-case hexadecimal, at least Digits digits (negatives in 64-bit two's complement).
std::string IntToHex(int64_t Value, int32_t Digits);

// --- Text to numbers ---
//
// Spaces around the number are allowed. Floats: an optional sign, digits with '.' as the
// only decimal separator, an optional exponent (e or E, optional sign, digits), or
// INF/NAN; numbers too small for a double read as 0, too large ones are rejected.
// Integers: an optional sign and decimal digits, or hexadecimal after '$' or "0x"
// (hexadecimal fills the bits, so "$FFFFFFFF" is -1). Failures raise EConvertError
// ("'X' is not a valid floating point value" / "'X' is not a valid integer value").

bool TryStrToFloat(std::string_view S, double& Value);
double StrToFloat(std::string_view S);
double StrToFloatDef(std::string_view S, double Default);
bool TryStrToInt(std::string_view S, int32_t& Value);
bool TryStrToInt64(std::string_view S, int64_t& Value);
int32_t StrToInt(std::string_view S);
int64_t StrToInt64(std::string_view S);
int32_t StrToIntDef(std::string_view S, int32_t Default);

// --- Dates to text ---

// Formats a moment by a picture (letters in any case):
//   c       the short date, then the long time unless the moment is midnight exactly
//   d dd    day of the month (dd with a leading zero); ddd dddd  day name, short / long
//   ddddd   the short date "m/d/yyyy"; dddddd  the long date "dddd, mmmm d, yyyy"
//   m mm    month (with a leading zero); mmm mmmm  month name, short / long. Right after an
//           h or hh (only text between) m and mm mean minutes.
//   yy      two-digit year; yyyy  four-digit year
//   h hh    hour, 12-hour when an am/pm specifier follows later in the picture
//   n nn    minute; s ss  second; z zzz  millisecond (zzz three digits)
//   t tt    the short time "h:nn AMPM" / the long time "h:nn:ss AMPM"
//   am/pm   "am" or "pm" in the letter case written; a/p  "a" or "p" likewise
//   ampm    "AM" or "PM"
//   /  :    the date and the time separator;  'text' "text"  written as it stands
// Any other character is written as it stands. An empty picture means "c". Raises
// EConvertError for a value that is not a date of years 1..9999.
std::string FormatDateTime(std::string_view Format, TDateTime DateTime);
// The short date, the long time, and "c".
std::string DateToStr(TDateTime DateTime);
std::string TimeToStr(TDateTime DateTime);
std::string DateTimeToStr(TDateTime DateTime);

// --- Format ---

// One argument of Format: an integer (of any width and signedness), a floating-point
// number, or text (a character, a C string, std::string or std::string_view, viewed, not
// copied). Booleans, enumerations and other pointers do not compile.
class TFormatArg {
public:
  enum TKind : uint8_t { fkInteger, fkFloat, fkString };

  template <std::integral T>
  requires(!std::same_as<T, bool> && !std::same_as<T, char>) TFormatArg(T Value)
      : FKind(fkInteger), FUnsigned(std::is_unsigned_v<T>), FWide(sizeof(T) > 4),
        FInteger(static_cast<uint64_t>(Value)) {}
  template <std::floating_point T>
  TFormatArg(T Value) : FKind(fkFloat), FFloat(static_cast<double>(Value)) {}
  TFormatArg(char Value) : FKind(fkString), FIsChar(true), FChar(Value) {}
  TFormatArg(const char* Value) : FKind(fkString), FText(Value ? Value : "") {}
  TFormatArg(std::string_view Value) : FKind(fkString), FText(Value) {}
  TFormatArg(const std::string& Value) : FKind(fkString), FText(Value) {}
  TFormatArg(bool) = delete;
  template <class T>
  requires std::is_enum_v<T> TFormatArg(T)
  = delete;

  TKind Kind() const { return FKind; }
  // The integer's bits; read as signed unless IsUnsigned.
  uint64_t IntegerBits() const { return FInteger; }
  bool IsUnsigned() const { return FUnsigned; }
  // True for 64-bit types; hexadecimal of a negative fills their width.
  bool IsWide() const { return FWide; }
  double Float() const { return FFloat; }
  std::string_view Text() const { return FIsChar ? std::string_view(&FChar, 1) : FText; }

private:
  TKind FKind;
  bool FUnsigned = false;
  bool FWide = false;
  bool FIsChar = false;
  char FChar = 0;
  uint64_t FInteger = 0;
  double FFloat = 0;
  std::string_view FText;
};

// Writes Args into Fmt by its specifiers:
//   %[index:][-][width][.precision]type      %% writes one '%'
// with type d (integer; precision = least digits), u (integer as unsigned), x (upper-case
// hexadecimal; precision = least digits), f (fixed, precision decimals, 2 by default),
// n (as f with thousands separators), m (currency, as ffCurrency), e (scientific,
// precision digits in all, 15 by default, three exponent digits at least), g (general,
// precision significant digits, 15 by default), s (text; precision = most characters).
// Width pads with spaces on the left, or on the right after '-'; '*' as width or precision
// takes it from the next integer argument; "index:" takes that argument and goes on from
// there. Raises EConvertError "Format 'Fmt' invalid or incompatible with argument" for a
// bad specifier or an argument of the wrong kind, and "No argument for format 'Fmt'" when
// the arguments run out.
std::string FormatArgs(std::string_view Fmt, std::span<const TFormatArg> Args);

template <class... A> std::string Format(std::string_view Fmt, const A&... Args) {
  if constexpr (sizeof...(A) == 0) {
    return FormatArgs(Fmt, {});
  } else {
    const TFormatArg Items[] = {TFormatArg(Args)...};
    return FormatArgs(Fmt, Items);
  }
}

} // namespace kx

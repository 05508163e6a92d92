#include "kxcharts/toolkit/runtime/KXFormat.h"

#include <cmath>
#include <limits>
#include <locale>
#include <string>

#include <gtest/gtest.h>

#include "kxcharts/toolkit/runtime/KXDateUtils.h"
#include "support/KXTestSupport.h"

namespace kx {
namespace {

using test::Inf;
using test::NaN;

struct TFloatCase {
  const char* Format;
  double Value;
  const char* Expected;
};

TEST(FormatFloat, PicturesPlaceDigitsSectionsExponentsAndLiterals) {
  // clang-format off
  const TFloatCase Cases[] = {
      // Digits and thousands: a comma anywhere asks for separators, extra digits crowd into
      // the first place, no point without decimals.
      {"#,##0.###", 1234.5, "1,234.5"}, {"#,##0.###", -1234.5678, "-1,234.568"},
      {"#,##0.###", 1234567890123, "1,234,567,890,123"}, {"0,000", 5, "0,005"},
      {"#,##0.00,", 1234567, "1,234,567.00"}, {"0", 12345678, "12345678"},
      {"00-00", 1234, "12-34"}, {"000.0", 1.25, "001.3"}, {"#.##", 0.5, ".5"},
      {"#.##", 5, "5"}, {"#", 0, ""}, {".00", 12.5, "12.50"}, {"0.#0", 1.5, "1.50"},
      // Halves of the written decimal round away from zero (1.005 is the decimal, not its
      // binary neighbour below).
      {"0", 2.5, "3"}, {"0", -2.5, "-3"}, {"0.00", 1.005, "1.01"}, {"0.00", 0.125, "0.13"},
      {"#,##0", 999.5, "1,000"}, {"0.000", 9.9995, "10.000"}, {"0.00", 0.1 + 0.2, "0.30"},
      // Sections: what rounds to zero takes the zero section; without one the first,
      // unsigned; an empty section, the first, signed; an empty first, general format.
      {"0.00;(0.00);'zero'", 3.14159, "3.14"}, {"0.00;(0.00);'zero'", -3.14159, "(3.14)"},
      {"0.00;(0.00);'zero'", 0, "zero"}, {"0.00;(0.00);'zero'", -0.001, "zero"},
      {"0.00;(0.00)", -0.001, "0.00"}, {"0.00;;'-'", -2, "-2.00"}, {"0;;0.00", 0, "0.00"},
      {";(0)", 5, "5"}, {";(0)", -5, "(5)"}, {"0;(0);zero;ignored", 0, "zero"},
      {"0.0", -0.0, "0.0"}, {"#,##0.###", -1e-5, "0"},
      // Exponents: 5e-324 is the shortest decimal of the smallest double; four digits at most.
      {"0.00E+00", 1234.5, "1.23E+03"}, {"0.00E+00", -0.000123456, "-1.23E-04"},
      {"0.00E-00", 1234.5, "1.23E03"}, {"0.00e-00", 0.00012, "1.20e-04"},
      {"00.0E+0", 1234.5, "12.3E+2"}, {"0.0E+0", 9.96, "1.0E+1"}, {"0.00E+00", 0, "0.00E+00"},
      {"0.###E+0000", 1e300, "1E+0300"}, {"0.###E+0", 1.5e-300, "1.5E-300"},
      {"0.##E+00", 5e-324, "5E-324"}, {"0E+00000", 12, "1E+0001"},
      // Literals; an E without a sign is plain text.
      {"'$'#,##0.00", -1234.567, "-$1,234.57"}, {"0.0 \"kg\"", 3.25, "3.3 kg"},
      {"0.00%", 12.345, "12.35%"}, {"'0#.,;E+'0", 7, "0#.,;E+7"}, {"\"a;b\"0;(0)", -7, "(7)"},
      {"Exp 0", 7, "Exp 7"}, {"abc", 5, "abc"}, {"'unterminated 0", 5, "unterminated 0"},
      // No decimal picture (more than 18 integer digits: general format); printf pictures.
      {"0.00", NaN, "NAN"}, {"0.00", Inf, "INF"}, {"#,##0", -Inf, "-INF"},
      {"#,##0", -1e308, "-1E308"}, {"#,##0.00", 1e18, "1E18"},
      {"#,##0", 123456789012345678.0, "123,456,789,012,345,680"}, {"0.00", -5e-324, "0.00"},
      {"", 0.1, "0.1"}, {"%.4f", 2.5, "2.5000"}, {"%.2f %%", 12.345, "12.35 %"}};
  // clang-format on
  for (const auto& C : Cases)
    EXPECT_EQ(FormatFloat(C.Format, C.Value), C.Expected)
        << "FormatFloat(\"" << C.Format << "\", " << C.Value << ")";
}

TEST(FloatToStr, GeneralFormatWith15SignificantDigits) {
  // clang-format off
  struct {
    double Value;
    const char* Expected;
  } const Cases[] = {
      {0.1, "0.1"}, {0.1 + 0.2, "0.3"}, {1.0 / 3, "0.333333333333333"}, {100, "100"},
      {-12345.678, "-12345.678"}, {123456789012345, "123456789012345"}, {1e15, "1E15"},
      {1.5e300, "1.5E300"}, {0.0001, "0.0001"}, {0.00001, "1E-5"}, {5e-324, "5E-324"}, {-0.0, "0"},
      {NaN, "NAN"}, {-Inf, "-INF"}};
  // clang-format on
  for (const auto& C : Cases)
    EXPECT_EQ(FloatToStr(C.Value), C.Expected) << C.Value;
}

TEST(FloatToStr, FloatFormatsHonourPrecisionAndDigits) {
  EXPECT_EQ(FloatToStrF(1234.5, ffExponent, 4, 2), "1.235E+03");
  EXPECT_EQ(FloatToStrF(-0.00012, ffExponent, 3, 0), "-1.20E-4");
  EXPECT_EQ(FloatToStrF(0, ffExponent, 3, 2), "0.00E+00");
  EXPECT_EQ(FloatToStrF(1.23456789, ffFixed, 4, 6), "1.235000"); // precision caps the digits
  EXPECT_EQ(FloatToStrF(-0.004, ffFixed, 15, 2), "0.00");
  EXPECT_EQ(FloatToStrF(1e20, ffFixed, 15, 2), "1E20");
  EXPECT_EQ(FloatToStrF(1e20, ffGeneral, 15, 3), "1E020");
  EXPECT_EQ(FloatToStrF(2.5, ffGeneral, 1, 0), "3");
}

TEST(Format, SpecifiersWidthsAndPrecisions) {
  struct {
    std::string Actual;
    const char* Expected;
  } const Cases[] = {
      {Format("%d|%5d|%-5d|%.3d", -7, 42, 42, -5), "-7|   42|42   |-005"},
      {Format("%x %x %.4x %x", 255, -1, 10, int64_t(-1)), "FF FFFFFFFF 000A FFFFFFFFFFFFFFFF"},
      {Format("%u %d", -1, uint64_t(18446744073709551615u)), "4294967295 18446744073709551615"},
      {Format("%s|%.2s|%5s|%-4s|", "abc", "h\xC3\xA9llo", "\xC3\xA9", 'c'),
       "abc|h\xC3\xA9|    \xC3\xA9|c   |"},
      {Format("%f|%.4f|%.0f|%8.2f", 3.14159, 2.5, 2.5, -1.005), "3.14|2.5000|3|   -1.01"},
      {Format("%g|%g|%.3g", 1e20, 0.1, 2.0 / 3), "1E20|0.1|0.667"},
      {Format("%e", 1234.5), "1.23450000000000E+003"},
      {Format("%n|%m", 1234567.891, -5.0), "1,234,567.89|($5.00)"},
      {Format("%1:s %0:s %s", "a", "b"), "b a b"},
      {Format("%*d|%-*d|%.*f", 4, 7, 3, 7, 1, 2.25), "   7|7  |2.3"},
      {Format("%S %D", std::string("up"), 3), "up 3"},
      {Format("no arguments"), "no arguments"},
      {Format("%f %s", 1.5f, std::string_view("sv")), "1.50 sv"},
  };
  for (const auto& C : Cases)
    EXPECT_EQ(C.Actual, C.Expected);
}

TEST(Format, MismatchedOrMissingArgumentsRaise) {
  const auto Message = [](auto&& Call) { return test::MessageOf<EConvertError>(Call); };
  const std::string Invalid = "invalid or incompatible with argument";
  EXPECT_EQ(Message([] { Format("%d", 1.5); }),
            "Format '%d' invalid or incompatible with argument");
  EXPECT_NE(Message([] { Format("%f", 1); }).find(Invalid), std::string::npos);
  EXPECT_NE(Message([] { Format("%s", 1); }).find(Invalid), std::string::npos);
  EXPECT_NE(Message([] { Format("%x", "a"); }).find(Invalid), std::string::npos);
  EXPECT_NE(Message([] { Format("%q", 1); }).find(Invalid), std::string::npos);
  EXPECT_NE(Message([] { Format("50%", 1); }).find(Invalid), std::string::npos);
  EXPECT_NE(Message([] { Format("%*d", 1.0, 2); }).find(Invalid), std::string::npos);
  EXPECT_NE(Message([] { Format("%99999999d", 2); }).find(Invalid), std::string::npos);
  EXPECT_EQ(Message([] { Format("%d %d", 1); }), "No argument for format '%d %d'");
  EXPECT_EQ(Message([] { Format("%5:d", 1); }), "No argument for format '%5:d'");
}

TEST(FormatDateTime, EverySpecifierWithEnglishSettings) {
  const TDateTime V = EncodeDateTime(2024, 2, 9, 13, 5, 9, 7); // a Friday afternoon
  // clang-format off
  struct {
    const char* Format;
    const char* Expected;
  } const Cases[] = {
      {"d dd ddd dddd", "9 09 Fri Friday"}, {"m mm mmm mmmm", "2 02 Feb February"},
      {"yy yyyy y yyy", "24 2024 24 2024"}, {"ddddd|dddddd", "2/9/2024|Friday, February 9, 2024"},
      {"h hh n nn s ss z zzz", "13 13 5 05 9 09 7 007"},
      {"hh:mm", "13:05"}, // m after h is minutes
      {"h 'x' mm", "13 x 05"},
      {"hh:nn mm", "13:05 02"}, // after n it is the month again
      {"h:nn am/pm", "1:05 pm"}, // the case as written
      {"h:nn Am/pM", "1:05 pM"}, {"h:nn a/p", "1:05 p"}, {"hh ampm", "01 PM"},
      {"t|tt", "1:05 PM|1:05:09 PM"}, {"c", "2/9/2024 1:05:09 PM"}, {"", "2/9/2024 1:05:09 PM"},
      {"yyyy/mm/dd", "2024/02/09"}, {"'dd' \"mm\" dd", "dd mm 09"}, {"D-M-YY", "9-2-24"},
      {"h 'am/pm' h am/pm", "13 am/pm 1 pm"}, // the quoted am/pm does not count
      {"x[e]g", "x[e]g"}};
  // clang-format on
  for (const auto& C : Cases)
    EXPECT_EQ(FormatDateTime(C.Format, V), C.Expected) << C.Format;
}

TEST(FormatDateTime, MidnightNoonAndTheDayBefore) {
  struct {
    TDateTime Value;
    const char* Format;
    const char* Expected;
  } const Cases[] = {
      {EncodeDate(2000, 1, 1), "c", "1/1/2000"}, // midnight: no time
      {EncodeDate(2000, 1, 1), "h:nn AMPM", "12:00 AM"},
      {EncodeDateTime(2000, 1, 1, 12, 0, 0, 0), "h:nn AMPM", "12:00 PM"},
      {EncodeDateTime(2000, 1, 1, 0, 0, 0, 1), "c", "1/1/2000 12:00:00 AM"},
      {EncodeDateTime(1999, 12, 31, 23, 59, 59, 999), "c zzz", "12/31/1999 11:59:59 PM 999"},
      {-1.25, "c", "12/29/1899 6:00:00 AM"},
      {0, "dddddd", "Saturday, December 30, 1899"},
      {EncodeDate(5, 3, 1), "yyyy yy", "0005 05"},
  };
  for (const auto& C : Cases)
    EXPECT_EQ(FormatDateTime(C.Format, C.Value), C.Expected) << C.Format << " " << C.Value;
  EXPECT_EQ(DateToStr(EncodeDateTime(2024, 7, 4, 18, 0, 0, 0)), "7/4/2024");
  EXPECT_EQ(TimeToStr(EncodeTime(18, 30, 5, 0)), "6:30:05 PM");
  EXPECT_EQ(DateTimeToStr(EncodeDate(2024, 7, 4)), "7/4/2024");
  EXPECT_THROW(FormatDateTime("c", NaN), EConvertError);
  EXPECT_THROW(DateToStr(1e300), EConvertError);
}

TEST(StrToFloat, ReadsPlainDecimalsOnly) {
  // clang-format off
  struct {
    const char* Text;
    bool Ok;
    double Value;
  } const Cases[] = {
      {"1.5", true, 1.5}, {" -12.5e3 ", true, -12500}, {"+.5", true, 0.5}, {"5.", true, 5},
      {"1E-2", true, 0.01}, {"1e-400", true, 0}, {"-1e-400", true, -0.0}, {"inf", true, Inf},
      {"-INF", true, -Inf}, {"1e400", false, 0}, {"1,5", false, 0}, {"1,000", false, 0},
      {"", false, 0}, {" ", false, 0}, {".", false, 0}, {"1e", false, 0}, {"1e+", false, 0},
      {"0x10", false, 0}, {"--1", false, 0}, {"1.2.3", false, 0}, {"infinity", false, 0},
      {"12abc", false, 0}};
  // clang-format on
  for (const auto& C : Cases) {
    double V = 42;
    EXPECT_EQ(TryStrToFloat(C.Text, V), C.Ok) << C.Text;
    if (C.Ok)
      EXPECT_EQ(V, C.Value) << C.Text;
    else
      EXPECT_EQ(V, 42) << C.Text;
  }
  double V = 0;
  EXPECT_TRUE(TryStrToFloat("nan", V));
  EXPECT_TRUE(std::isnan(V));
  EXPECT_EQ(StrToFloat(FloatToStr(1.0 / 3)), 0.333333333333333);
  EXPECT_EQ(StrToFloatDef("x", 7), 7);
  EXPECT_EQ(test::MessageOf([] { StrToFloat("1,5"); }),
            "'1,5' is not a valid floating point value");
}

TEST(StrToInt, DecimalAndHexadecimalWithinTheirWidth) {
  // clang-format off
  struct {
    const char* Text;
    bool Ok;
    int32_t Value;
  } const Cases[] = {
      {"42", true, 42}, {" -17", true, -17}, {"+8 ", true, 8}, {"$FF", true, 255},
      {"0x1a", true, 26}, {"$FFFFFFFF", true, -1}, {"-$10", true, -16},
      {"2147483647", true, 2147483647}, {"-2147483648", true, std::numeric_limits<int32_t>::min()},
      {"2147483648", false, 0}, {"$100000000", false, 0}, {"1.0", false, 0}, {"", false, 0},
      {"$", false, 0}, {"12 3", false, 0}};
  // clang-format on
  for (const auto& C : Cases) {
    int32_t V = 99;
    EXPECT_EQ(TryStrToInt(C.Text, V), C.Ok) << C.Text;
    EXPECT_EQ(V, C.Ok ? C.Value : 99) << C.Text;
  }
  EXPECT_EQ(StrToInt64("-9223372036854775808"), std::numeric_limits<int64_t>::min());
  EXPECT_THROW(StrToInt64("9223372036854775808"), EConvertError);
  EXPECT_EQ(StrToInt64("$FFFFFFFFFFFFFFFF"), -1);
  EXPECT_EQ(StrToIntDef("x", -3), -3);
  EXPECT_EQ(IntToStr(int64_t(-9000000000)), "-9000000000");
  EXPECT_EQ(IntToHex(255, 4), "00FF");
  EXPECT_EQ(IntToHex(-1, 2), "FFFFFFFFFFFFFFFF");
  EXPECT_EQ(test::MessageOf([] { StrToInt("abc"); }), "'abc' is not a valid integer value");
}

// A comma decimal separator in the process locale must not reach the output.
struct TCommaDecimals : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(FormatFloat, OutputDoesNotDependOnTheProcessLocale) {
  const std::locale Saved =
      std::locale::global(std::locale(std::locale::classic(), new TCommaDecimals));
  const std::string Text = FormatFloat("#,##0.00", 1234.5) + " " + FloatToStr(0.25) + " " +
                           Format("%.1f %d", 2.5, 1234) + " " + IntToStr(1234);
  std::locale::global(Saved);
  EXPECT_EQ(Text, "1,234.50 0.25 2.5 1234 1234");
}

} // namespace
} // namespace kx

#include "kxcharts/toolkit/runtime/KXFormat.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "kxcharts/toolkit/runtime/KXDateUtils.h"
#include "kxcharts/toolkit/runtime/KXSysUtils.h"

namespace kx {

namespace {

constexpr const TFormatSettings& FS = FormatSettings;

// --- Decimal digits ---

// A number as significant digits: Value = 0.D1D2... * 10^Exponent. No digits means 0.
struct TDecimal {
  bool Negative = false;
  bool Nan = false;
  bool Inf = false;
  int32_t Exponent = 0;
  int32_t Count = 0;
  char Digits[24] = {};

  char DigitAt(int64_t I) const { return I >= 0 && I < Count ? Digits[I] : '0'; }
};

// The shortest round-trip digits of Value, rounded half away from zero to at most
// Precision significant digits and at most Decimals digits after the point.
TDecimal ToDecimal(double Value, int32_t Precision, int32_t Decimals) {
  TDecimal R;
  if (std::isnan(Value)) {
    R.Nan = true;
    return R;
  }
  if (std::isinf(Value)) {
    R.Inf = true;
    R.Negative = Value < 0;
    return R;
  }
  if (Value == 0) return R;
  char Buf[48];
  const char* End =
      std::to_chars(Buf, Buf + sizeof Buf, std::fabs(Value), std::chars_format::scientific).ptr;
  const char* P = Buf;
  R.Digits[R.Count++] = *P++;
  if (*P == '.')
    for (++P; *P != 'e'; ++P)
      R.Digits[R.Count++] = *P;
  ++P; // the 'e'
  int32_t Exp = 0;
  std::from_chars(P + (*P == '+'), End, Exp);
  R.Exponent = Exp + 1;
  R.Negative = Value < 0;

  const int64_t Keep = std::min<int64_t>(Precision, int64_t(R.Exponent) + Decimals);
  if (Keep < R.Count) {
    const bool Up = Keep >= 0 && R.Digits[Keep] >= '5';
    R.Count = static_cast<int32_t>(std::max<int64_t>(Keep, 0));
    if (Up) {
      int32_t I = R.Count - 1;
      while (I >= 0 && R.Digits[I] == '9')
        --I;
      if (I < 0) {
        R.Digits[0] = '1';
        R.Count = 1;
        ++R.Exponent;
      } else {
        ++R.Digits[I];
        R.Count = I + 1;
      }
    }
  }
  while (R.Count > 0 && R.Digits[R.Count - 1] == '0')
    --R.Count;
  if (R.Count == 0) {
    R.Exponent = 0;
    R.Negative = false; // a number that rounds to zero is written as zero, unsigned
  }
  return R;
}

std::string SpecialText(const TDecimal& D) {
  if (D.Nan) return "NAN";
  return D.Negative ? "-INF" : "INF";
}

void AppendExponent(std::string& Out, int32_t Exp, int32_t MinDigits, bool AlwaysSign) {
  if (Exp < 0)
    Out += '-';
  else if (AlwaysSign)
    Out += '+';
  const std::string Digits = std::to_string(Exp < 0 ? -int64_t(Exp) : int64_t(Exp));
  Out.append(MinDigits > int32_t(Digits.size()) ? MinDigits - Digits.size() : 0, '0');
  Out += Digits;
}

// Appends Count integer digits taken from D (index 0 is the most significant), with a
// thousands separator between groups of three when asked.
void AppendIntegerDigits(std::string& Out, const TDecimal& D, int32_t Count, bool Thousands) {
  for (int32_t I = 0; I < Count; ++I) {
    Out += D.DigitAt(I);
    const int32_t Rest = Count - 1 - I;
    if (Thousands && Rest > 0 && Rest % 3 == 0) Out += FS.ThousandSeparator;
  }
}

// --- FloatToStrF ---

std::string FormatGeneral(double Value, int32_t Precision, int32_t Digits) {
  const TDecimal D = ToDecimal(Value, Precision, 9999);
  if (D.Nan || D.Inf) return SpecialText(D);
  if (D.Count == 0) return "0";
  std::string Out;
  if (D.Negative) Out += '-';
  if (D.Exponent > Precision || D.Exponent < -3) {
    Out += D.Digits[0];
    if (D.Count > 1) {
      Out += FS.DecimalSeparator;
      Out.append(D.Digits + 1, D.Count - 1);
    }
    Out += 'E';
    AppendExponent(Out, D.Exponent - 1, Digits, false);
  } else if (D.Exponent <= 0) {
    Out += '0';
    Out += FS.DecimalSeparator;
    Out.append(-D.Exponent, '0');
    Out.append(D.Digits, D.Count);
  } else {
    AppendIntegerDigits(Out, D, D.Exponent, false);
    if (D.Count > D.Exponent) {
      Out += FS.DecimalSeparator;
      Out.append(D.Digits + D.Exponent, D.Count - D.Exponent);
    }
  }
  return Out;
}

std::string FormatExponent(double Value, int32_t Precision, int32_t Digits) {
  const TDecimal D = ToDecimal(Value, Precision, 9999);
  if (D.Nan || D.Inf) return SpecialText(D);
  std::string Out;
  if (D.Negative) Out += '-';
  Out += D.DigitAt(0);
  if (Precision > 1) {
    Out += FS.DecimalSeparator;
    for (int32_t I = 1; I < Precision; ++I)
      Out += D.DigitAt(I);
  }
  Out += 'E';
  AppendExponent(Out, D.Count ? D.Exponent - 1 : 0, Digits, true);
  return Out;
}

// ffFixed, ffNumber and ffCurrency share the digits; only the dressing differs.
std::string FormatFixed(double Value, TFloatFormat Format, int32_t Precision, int32_t Digits) {
  const TDecimal D = ToDecimal(Value, Precision, Digits);
  if (D.Nan || D.Inf) return SpecialText(D);
  if (D.Exponent > Precision) return FormatGeneral(Value, Precision, 0);
  std::string Body;
  if (D.Exponent <= 0)
    Body += '0';
  else
    AppendIntegerDigits(Body, D, D.Exponent, Format != ffFixed);
  if (Digits > 0) {
    Body += FS.DecimalSeparator;
    for (int32_t I = 0; I < Digits; ++I)
      Body += D.DigitAt(int64_t(D.Exponent) + I);
  }
  if (Format == ffCurrency) {
    Body.insert(0, FS.CurrencyString);
    return D.Negative ? "(" + Body + ")" : Body;
  }
  return D.Negative ? "-" + Body : Body;
}

// --- FormatFloat pictures ---

// The length of the quoted text at I, quotes included (to the end when unterminated).
size_t QuotedLength(std::string_view S, size_t I) {
  const size_t Close = S.find(S[I], I + 1);
  return Close == std::string_view::npos ? S.size() - I : Close - I + 1;
}

// The length of an exponent specifier ("E+00") at I, or 0 when the letter there is plain
// text. All zeros after the sign belong to it; MinDigits gets their number, at most four.
size_t ExponentLength(std::string_view S, size_t I, int32_t& MinDigits) {
  if ((S[I] != 'E' && S[I] != 'e') || I + 1 >= S.size() || (S[I + 1] != '+' && S[I + 1] != '-'))
    return 0;
  size_t J = I + 2;
  while (J < S.size() && S[J] == '0')
    ++J;
  MinDigits = static_cast<int32_t>(std::min<size_t>(J - I - 2, 4));
  return J - I;
}

// Splits a picture at ';' outside quotes; answers the number of sections (at most 3).
int32_t SplitSections(std::string_view F, std::string_view (&Out)[3]) {
  int32_t Count = 0;
  size_t Start = 0;
  for (size_t I = 0; I < F.size() && Count < 2; ++I) {
    if (F[I] == '\'' || F[I] == '"') {
      I += QuotedLength(F, I) - 1;
    } else if (F[I] == ';') {
      Out[Count++] = F.substr(Start, I - Start);
      Start = I + 1;
    }
  }
  std::string_view Last = F.substr(Start);
  // A third section ends at the next separator; anything after it is not read.
  for (size_t I = 0; I < Last.size(); ++I) {
    if (Last[I] == '\'' || Last[I] == '"')
      I += QuotedLength(Last, I) - 1;
    else if (Last[I] == ';') {
      Last = Last.substr(0, I);
      break;
    }
  }
  Out[Count++] = Last;
  return Count;
}

struct TSectionScan {
  int32_t IntCount = 0;      // placeholders before the point
  int32_t FracCount = 0;     // placeholders after it
  int32_t FirstIntZero = -1; // the first '0' among the integer placeholders
  int32_t LastFracZero = 0;  // the last '0' among the decimal placeholders, counted from 1
  bool Thousands = false;
  bool Scientific = false;
};

TSectionScan ScanSection(std::string_view S) {
  TSectionScan R;
  bool Point = false;
  int32_t MinDigits = 0;
  for (size_t I = 0; I < S.size(); ++I) {
    switch (const char C = S[I]) {
    case '0':
    case '#':
      if (!Point) {
        if (C == '0' && R.FirstIntZero < 0) R.FirstIntZero = R.IntCount;
        ++R.IntCount;
      } else {
        ++R.FracCount;
        if (C == '0') R.LastFracZero = R.FracCount;
      }
      break;
    case '.':
      Point = true;
      break;
    case ',':
      R.Thousands = true;
      break;
    case '\'':
    case '"':
      I += QuotedLength(S, I) - 1;
      break;
    case 'E':
    case 'e':
      if (!R.Scientific)
        if (const size_t Len = ExponentLength(S, I, MinDigits)) {
          R.Scientific = true;
          I += Len - 1;
        }
      break;
    default:
      break;
    }
  }
  return R;
}

// Writes D by one section. The digits flow through the placeholders: integer digits that
// find no placeholder of their own crowd into the first one, and with no integer
// placeholders at all they come just before the first decimal.
std::string ApplySection(std::string_view S, const TSectionScan& Sc, const TDecimal& D,
                         bool Minus) {
  std::string Out;
  if (Minus) Out += '-';
  // Where the point sits among the digits of D.
  const int32_t PointAt = Sc.Scientific ? (D.Count ? Sc.IntCount : 0) : D.Exponent;
  const int32_t NumberInt = std::max(PointAt, 0);
  const int32_t MinInt = Sc.FirstIntZero >= 0 ? Sc.IntCount - Sc.FirstIntZero : 0;
  const int32_t ShownInt = std::max(NumberInt, MinInt);
  const int32_t ShownFrac = std::max(std::max(D.Count - PointAt, 0), Sc.LastFracZero);
  const int32_t Padding = ShownInt - NumberInt;

  int32_t NextInt = 0, IntPlace = 0, FracPlace = 0;
  bool PointDone = ShownFrac == 0, PointSeen = false, ExponentDone = false;
  const auto PutInt = [&](int32_t Count) {
    for (; Count > 0 && NextInt < ShownInt; --Count, ++NextInt) {
      Out += NextInt < Padding ? '0' : D.DigitAt(NextInt - Padding);
      const int32_t Rest = ShownInt - NextInt - 1;
      if (Sc.Thousands && Rest > 0 && Rest % 3 == 0) Out += FS.ThousandSeparator;
    }
  };
  const auto PutPoint = [&] {
    if (!PointDone && NextInt == ShownInt) {
      Out += FS.DecimalSeparator;
      PointDone = true;
    }
  };

  int32_t MinDigits = 0;
  for (size_t I = 0; I < S.size(); ++I) {
    const char C = S[I];
    switch (C) {
    case '0':
    case '#':
      if (!PointSeen) {
        const int32_t PlacesLeft = Sc.IntCount - IntPlace++;
        const int32_t DigitsLeft = ShownInt - NextInt;
        if (DigitsLeft >= PlacesLeft) PutInt(DigitsLeft - PlacesLeft + 1);
      } else {
        PutInt(ShownInt - NextInt);
        if (FracPlace < ShownFrac) {
          PutPoint();
          Out += D.DigitAt(int64_t(PointAt) + FracPlace);
        }
        ++FracPlace;
      }
      break;
    case '.':
      if (!PointSeen) {
        PointSeen = true;
        PutPoint();
      }
      break;
    case ',':
      break;
    case '\'':
    case '"': {
      const size_t Len = QuotedLength(S, I);
      Out.append(S.substr(I + 1, Len >= 2 && S[I + Len - 1] == C ? Len - 2 : Len - 1));
      I += Len - 1;
      break;
    }
    case 'E':
    case 'e':
      if (Sc.Scientific && !ExponentDone) {
        if (const size_t Len = ExponentLength(S, I, MinDigits)) {
          ExponentDone = true;
          Out += C;
          AppendExponent(Out, D.Count ? D.Exponent - Sc.IntCount : 0, MinDigits, S[I + 1] == '+');
          I += Len - 1;
          break;
        }
      }
      Out += C;
      break;
    default:
      Out += C;
      break;
    }
  }
  return Out;
}

// --- Text to numbers ---

bool IsSpace(char C) {
  return C == ' ' || C == '\t' || C == '\n' || C == '\r' || C == '\f' || C == '\v';
}

std::string_view TrimSpaces(std::string_view S) {
  while (!S.empty() && IsSpace(S.front()))
    S.remove_prefix(1);
  while (!S.empty() && IsSpace(S.back()))
    S.remove_suffix(1);
  return S;
}

bool SameText(std::string_view A, std::string_view B) {
  return A.size() == B.size() && std::equal(A.begin(), A.end(), B.begin(), [](char X, char Y) {
           return (X | 0x20) == (Y | 0x20);
         });
}

bool IsDigit(char C) {
  return C >= '0' && C <= '9';
}

// Reads an optionally signed integer, decimal or hexadecimal ('$' or 0x); hexadecimal
// gives the bits, which the caller fits into its width.
bool ParseInteger(std::string_view S, bool& Negative, bool& Hex, uint64_t& Magnitude) {
  S = TrimSpaces(S);
  Negative = false;
  if (!S.empty() && (S[0] == '-' || S[0] == '+')) {
    Negative = S[0] == '-';
    S.remove_prefix(1);
  }
  Hex = false;
  if (!S.empty() && S[0] == '$') {
    Hex = true;
    S.remove_prefix(1);
  } else if (S.size() > 1 && S[0] == '0' && (S[1] == 'x' || S[1] == 'X')) {
    Hex = true;
    S.remove_prefix(2);
  }
  if (S.empty()) return false;
  const auto R = std::from_chars(S.data(), S.data() + S.size(), Magnitude, Hex ? 16 : 10);
  return R.ec == std::errc() && R.ptr == S.data() + S.size();
}

[[noreturn]] void InvalidInteger(std::string_view S) {
  throw EConvertError("'" + std::string(S) + "' is not a valid integer value");
}

// --- Dates ---

struct TDateParts {
  int32_t Year, Month, Day, DOW, Hour, Min, Sec, MSec;
};

void AppendNumber(std::string& Out, int64_t Value, int32_t MinDigits) {
  const std::string Digits = std::to_string(Value);
  Out.append(MinDigits > int32_t(Digits.size()) ? MinDigits - Digits.size() : 0, '0');
  Out += Digits;
}

bool StartsWithText(std::string_view S, size_t I, std::string_view Word) {
  return S.size() - I >= Word.size() && SameText(S.substr(I, Word.size()), Word);
}

char Upper(char C) {
  return C >= 'a' && C <= 'z' ? char(C - 32) : C;
}

// An h is on the 12-hour clock when an am/pm specifier comes later in the picture,
// before the next h.
bool UsesTwelveHours(std::string_view F, size_t From) {
  bool Quoted = false;
  char Quote = 0;
  for (size_t I = From; I < F.size(); ++I) {
    const char C = F[I];
    if (Quoted) {
      if (C == Quote) Quoted = false;
    } else if (C == '\'' || C == '"') {
      Quoted = true;
      Quote = C;
    } else if (C == 'a' || C == 'A') {
      return StartsWithText(F, I, "am/pm") || StartsWithText(F, I, "a/p") ||
             StartsWithText(F, I, "ampm");
    } else if (C == 'h' || C == 'H') {
      return false;
    }
  }
  return false;
}

void AppendDateFormat(std::string& Out, std::string_view F, const TDateParts& P) {
  char LastToken = 0;
  size_t I = 0;
  while (I < F.size()) {
    const char Starter = F[I];
    char Token = Upper(Starter);
    if (Token >= 'A' && Token <= 'Z') {
      if (Token == 'M' && LastToken == 'H') Token = 'N';
      LastToken = Token;
    }
    size_t Count = 1;
    while (I + Count < F.size() && F[I + Count] == Starter)
      ++Count;
    switch (Token) {
    case 'Y':
      AppendNumber(Out, Count <= 2 ? P.Year % 100 : P.Year, Count <= 2 ? 2 : 4);
      break;
    case 'M':
      if (Count <= 2)
        AppendNumber(Out, P.Month, int32_t(Count));
      else
        Out += (Count == 3 ? FS.ShortMonthNames : FS.LongMonthNames)[P.Month - 1];
      break;
    case 'D':
      switch (Count) {
      case 1:
      case 2:
        AppendNumber(Out, P.Day, int32_t(Count));
        break;
      case 3:
        Out += FS.ShortDayNames[P.DOW - 1];
        break;
      case 4:
        Out += FS.LongDayNames[P.DOW - 1];
        break;
      case 5:
        AppendDateFormat(Out, FS.ShortDateFormat, P);
        break;
      default:
        AppendDateFormat(Out, FS.LongDateFormat, P);
        break;
      }
      break;
    case 'H': {
      int32_t H = P.Hour;
      if (UsesTwelveHours(F, I + Count)) H = H % 12 == 0 ? 12 : H % 12;
      AppendNumber(Out, H, Count >= 2 ? 2 : 1);
      break;
    }
    case 'N':
      AppendNumber(Out, P.Min, Count >= 2 ? 2 : 1);
      break;
    case 'S':
      AppendNumber(Out, P.Sec, Count >= 2 ? 2 : 1);
      break;
    case 'Z':
      AppendNumber(Out, P.MSec, Count >= 2 ? 3 : 1);
      break;
    case 'T':
      AppendDateFormat(Out, Count == 1 ? FS.ShortTimeFormat : FS.LongTimeFormat, P);
      break;
    case 'C':
      AppendDateFormat(Out, FS.ShortDateFormat, P);
      if (P.Hour || P.Min || P.Sec || P.MSec) {
        Out += ' ';
        AppendDateFormat(Out, FS.LongTimeFormat, P);
      }
      break;
    case 'A':
      Count = 1;
      if (StartsWithText(F, I, "am/pm")) {
        Out.append(F.substr(I + (P.Hour >= 12 ? 3 : 0), 2));
        Count = 5;
      } else if (StartsWithText(F, I, "a/p")) {
        Out += F[I + (P.Hour >= 12 ? 2 : 0)];
        Count = 3;
      } else if (StartsWithText(F, I, "ampm")) {
        Out += P.Hour >= 12 ? FS.TimePMString : FS.TimeAMString;
        Count = 4;
      } else {
        Out += Starter;
      }
      break;
    case '/':
      Count = 1;
      Out += FS.DateSeparator;
      break;
    case ':':
      Count = 1;
      Out += FS.TimeSeparator;
      break;
    case '\'':
    case '"': {
      Count = QuotedLength(F, I);
      Out.append(
          F.substr(I + 1, Count >= 2 && F[I + Count - 1] == Starter ? Count - 2 : Count - 1));
      break;
    }
    default:
      Count = 1;
      Out += Starter;
      break;
    }
    I += Count;
  }
}

// --- Format ---

size_t CodePoints(std::string_view S) {
  return size_t(std::count_if(S.begin(), S.end(), [](char C) { return (C & 0xC0) != 0x80; }));
}

// The first Count code points of S.
std::string_view FirstCodePoints(std::string_view S, size_t Count) {
  size_t I = 0;
  for (; I < S.size(); ++I)
    if ((S[I] & 0xC0) != 0x80 && Count-- == 0) break;
  return S.substr(0, I);
}

std::string ToHex(uint64_t Value, int32_t MinDigits) {
  char Buf[24];
  char* End = std::to_chars(Buf, Buf + sizeof Buf, Value, 16).ptr;
  std::transform(Buf, End, Buf, Upper);
  std::string Out;
  Out.append(MinDigits > End - Buf ? MinDigits - (End - Buf) : 0, '0');
  Out.append(Buf, End);
  return Out;
}

} // namespace

// --- Numbers to text ---

std::string FloatToStrF(double Value, TFloatFormat Format, int32_t Precision, int32_t Digits) {
  Precision = std::clamp(Precision, 1, 18);
  switch (Format) {
  case ffGeneral:
    return FormatGeneral(Value, Precision, std::clamp(Digits, 0, 4));
  case ffExponent:
    return FormatExponent(Value, Precision, std::clamp(Digits, 0, 4));
  case ffFixed:
  case ffNumber:
  case ffCurrency:
    return FormatFixed(Value, Format, Precision, std::clamp(Digits, 0, 18));
  }
  throw EConvertError("Unknown float format " + std::to_string(int(Format)));
}

std::string FloatToStr(double Value) {
  return FormatGeneral(Value, 15, 0);
}

std::string FormatFloat(std::string_view Format, double Value) {
  if (Format.empty()) return FloatToStr(Value);
  // Format strings written for the printf-like Format (the axes' "%.4f" fallback).
  if (Format[0] == '%') return kx::Format(Format, Value);
  if (std::isnan(Value) || std::isinf(Value)) return FloatToStr(Value);

  std::string_view Sections[3];
  const int32_t Count = SplitSections(Format, Sections);
  const auto Usable = [&](int32_t I) { return I < Count && !Sections[I].empty(); };
  int32_t Section = Value > 0 ? 0 : Value < 0 ? 1 : 2;
  if (!Usable(Section)) Section = 0;
  if (Sections[Section].empty()) return FloatToStr(Value);

  TSectionScan Scan = ScanSection(Sections[Section]);
  const double Abs = std::fabs(Value);
  const TDecimal D = Scan.Scientific
                         ? ToDecimal(Abs, std::max(Scan.IntCount + Scan.FracCount, 1), 9999)
                         : ToDecimal(Abs, 18, Scan.FracCount);
  if (!Scan.Scientific && D.Exponent > 18) return FloatToStr(Value);
  if (D.Count == 0 && Section != 2) {
    const int32_t ZeroSection = Usable(2) ? 2 : 0;
    if (ZeroSection != Section) {
      Section = ZeroSection;
      if (Sections[Section].empty()) return FloatToStr(0);
      Scan = ScanSection(Sections[Section]);
    }
  }
  return ApplySection(Sections[Section], Scan, D, Section == 0 && Value < 0 && D.Count > 0);
}

std::string IntToHex(int64_t Value, int32_t Digits) {
  return ToHex(static_cast<uint64_t>(Value), std::clamp(Digits, 0, 16));
}

// --- Text to numbers ---

bool TryStrToFloat(std::string_view S, double& Value) {
  S = TrimSpaces(S);
  bool Negative = false;
  if (!S.empty() && (S[0] == '-' || S[0] == '+')) {
    Negative = S[0] == '-';
    S.remove_prefix(1);
  }
  if (SameText(S, "INF") || SameText(S, "NAN")) {
    const double Special = SameText(S, "INF") ? HUGE_VAL : std::nan("");
    Value = Negative ? -Special : Special;
    return true;
  }
  // Checked here so that from_chars sees only the plain decimal syntax (no hex floats,
  // no "infinity" spellings, no second sign).
  size_t I = 0, Mantissa = 0, FirstNonZero = std::string_view::npos, IntDigits = 0;
  bool Point = false;
  for (; I < S.size() && (IsDigit(S[I]) || (S[I] == '.' && !Point)); ++I) {
    if (S[I] == '.') {
      Point = true;
      continue;
    }
    if (S[I] != '0' && FirstNonZero == std::string_view::npos) FirstNonZero = Mantissa;
    ++Mantissa;
    if (!Point) ++IntDigits;
  }
  if (Mantissa == 0) return false;
  int64_t Exp = 0;
  if (I < S.size() && (S[I] == 'e' || S[I] == 'E')) {
    size_t J = I + 1;
    if (J < S.size() && (S[J] == '+' || S[J] == '-')) ++J;
    if (J == S.size() || !IsDigit(S[J])) return false;
    const size_t Digits = J;
    while (J < S.size() && IsDigit(S[J]))
      ++J;
    // Clamped: beyond a few thousand the exponent decides overflow or underflow alone.
    const std::string_view E = S.substr(Digits, std::min<size_t>(J - Digits, 6));
    std::from_chars(E.data(), E.data() + E.size(), Exp);
    if (S[Digits - 1] == '-') Exp = -Exp;
    I = J;
  }
  if (I != S.size()) return false;
  double Parsed = 0;
  const auto R = std::from_chars(S.data(), S.data() + S.size(), Parsed);
  if (R.ec == std::errc::result_out_of_range) {
    // Too small for a double reads as 0; too large is no number.
    if (FirstNonZero == std::string_view::npos ||
        int64_t(IntDigits) - int64_t(FirstNonZero) + Exp < 0)
      Parsed = 0;
    else
      return false;
  } else if (R.ec != std::errc() || R.ptr != S.data() + S.size()) {
    return false;
  }
  Value = Negative ? -Parsed : Parsed;
  return true;
}

double StrToFloat(std::string_view S) {
  double Value;
  if (!TryStrToFloat(S, Value))
    throw EConvertError("'" + std::string(S) + "' is not a valid floating point value");
  return Value;
}

double StrToFloatDef(std::string_view S, double Default) {
  double Value;
  return TryStrToFloat(S, Value) ? Value : Default;
}

bool TryStrToInt64(std::string_view S, int64_t& Value) {
  bool Negative, Hex;
  uint64_t M;
  if (!ParseInteger(S, Negative, Hex, M)) return false;
  if (!Hex && M > (Negative ? uint64_t(INT64_MAX) + 1 : uint64_t(INT64_MAX))) return false;
  Value = static_cast<int64_t>(Negative ? 0 - M : M);
  return true;
}

bool TryStrToInt(std::string_view S, int32_t& Value) {
  bool Negative, Hex;
  uint64_t M;
  if (!ParseInteger(S, Negative, Hex, M)) return false;
  if (Hex ? M > UINT32_MAX : M > (Negative ? uint64_t(INT32_MAX) + 1 : uint64_t(INT32_MAX)))
    return false;
  const uint32_t Bits = static_cast<uint32_t>(M);
  Value = static_cast<int32_t>(Negative ? 0u - Bits : Bits);
  return true;
}

int32_t StrToInt(std::string_view S) {
  int32_t Value;
  if (!TryStrToInt(S, Value)) InvalidInteger(S);
  return Value;
}

int64_t StrToInt64(std::string_view S) {
  int64_t Value;
  if (!TryStrToInt64(S, Value)) InvalidInteger(S);
  return Value;
}

int32_t StrToIntDef(std::string_view S, int32_t Default) {
  int32_t Value;
  return TryStrToInt(S, Value) ? Value : Default;
}

// --- Dates to text ---

std::string FormatDateTime(std::string_view Format, TDateTime DateTime) {
  TDateParts P;
  DecodeDateFully(DateTime, P.Year, P.Month, P.Day, P.DOW);
  DecodeTime(DateTime, P.Hour, P.Min, P.Sec, P.MSec);
  std::string Out;
  AppendDateFormat(Out, Format.empty() ? std::string_view("c") : Format, P);
  return Out;
}

std::string DateToStr(TDateTime DateTime) {
  return FormatDateTime(FS.ShortDateFormat, DateTime);
}

std::string TimeToStr(TDateTime DateTime) {
  return FormatDateTime(FS.LongTimeFormat, DateTime);
}

std::string DateTimeToStr(TDateTime DateTime) {
  return FormatDateTime("c", DateTime);
}

// --- Format ---

std::string FormatArgs(std::string_view Fmt, std::span<const TFormatArg> Args) {
  const auto Invalid = [&] {
    return EConvertError("Format '" + std::string(Fmt) + "' invalid or incompatible with argument");
  };
  size_t ArgIndex = 0;
  const auto NextArg = [&]() -> const TFormatArg& {
    if (ArgIndex >= Args.size())
      throw EConvertError("No argument for format '" + std::string(Fmt) + "'");
    return Args[ArgIndex++];
  };
  // A count in a specifier: digits, or '*' for the next (integer) argument. Counts are
  // held to a million so that a typo cannot ask for gigabytes of padding.
  constexpr int64_t MaxCount = 1000000;
  size_t I = 0;
  const auto ReadCount = [&](int64_t& N) {
    if (I < Fmt.size() && Fmt[I] == '*') {
      ++I;
      const TFormatArg& A = NextArg();
      if (A.Kind() != TFormatArg::fkInteger) throw Invalid();
      N = A.IsUnsigned() && A.IntegerBits() > uint64_t(MaxCount)
              ? MaxCount + 1
              : static_cast<int64_t>(A.IntegerBits());
      if (N > MaxCount || N < -MaxCount) throw Invalid();
      return true;
    }
    if (I >= Fmt.size() || !IsDigit(Fmt[I])) return false;
    N = 0;
    for (; I < Fmt.size() && IsDigit(Fmt[I]); ++I) {
      N = N * 10 + (Fmt[I] - '0');
      if (N > MaxCount) throw Invalid();
    }
    return true;
  };

  std::string Out;
  while (I < Fmt.size()) {
    const char C = Fmt[I++];
    if (C != '%') {
      Out += C;
      continue;
    }
    if (I < Fmt.size() && Fmt[I] == '%') {
      Out += '%';
      ++I;
      continue;
    }
    int64_t N = 0, Width = 0, Prec = -1;
    bool Left = false;
    bool HaveN = ReadCount(N);
    if (HaveN && I < Fmt.size() && Fmt[I] == ':') {
      if (N < 0) throw Invalid();
      ArgIndex = size_t(N);
      ++I;
      HaveN = false;
    }
    if (!HaveN && I < Fmt.size() && Fmt[I] == '-') {
      Left = true;
      ++I;
    }
    if (HaveN || ReadCount(N)) Width = N;
    if (Width < 0) {
      Left = true;
      Width = -Width;
    }
    if (I < Fmt.size() && Fmt[I] == '.') {
      ++I;
      if (!ReadCount(Prec)) Prec = 0;
      if (Prec < 0) Prec = -1;
    }
    if (I >= Fmt.size()) throw Invalid();
    const char Type = Upper(Fmt[I++]);
    const TFormatArg& A = NextArg();
    std::string Body;
    switch (Type) {
    case 'D':
    case 'U':
    case 'X': {
      if (A.Kind() != TFormatArg::fkInteger) throw Invalid();
      uint64_t Bits = A.IntegerBits();
      const bool Negative = Type == 'D' && !A.IsUnsigned() && static_cast<int64_t>(Bits) < 0;
      if (Negative) Bits = 0 - Bits;
      if (Type != 'D' && !A.IsWide()) Bits &= 0xFFFFFFFFu;
      std::string Digits = Type == 'X' ? ToHex(Bits, 0) : std::to_string(Bits);
      if (Prec > int64_t(Digits.size())) Digits.insert(0, size_t(Prec) - Digits.size(), '0');
      Body = Negative ? "-" + Digits : Digits;
      break;
    }
    case 'E':
    case 'F':
    case 'G':
    case 'N':
    case 'M': {
      if (A.Kind() != TFormatArg::fkFloat) throw Invalid();
      const double V = A.Float();
      const int32_t P = int32_t(std::min<int64_t>(Prec, 18));
      switch (Type) {
      case 'E':
        Body = FloatToStrF(V, ffExponent, Prec < 0 ? 15 : P, 3);
        break;
      case 'G':
        Body = FloatToStrF(V, ffGeneral, Prec <= 0 ? 15 : P, 0);
        break;
      default:
        Body = FloatToStrF(V,
                           Type == 'F'   ? ffFixed
                           : Type == 'N' ? ffNumber
                                         : ffCurrency,
                           18, Prec < 0 ? 2 : P);
        break;
      }
      break;
    }
    case 'S': {
      if (A.Kind() != TFormatArg::fkString) throw Invalid();
      const std::string_view Text = A.Text();
      Body = Prec >= 0 ? FirstCodePoints(Text, size_t(Prec)) : Text;
      break;
    }
    default:
      throw Invalid();
    }
    const size_t Length = CodePoints(Body);
    const size_t Pad = Width > int64_t(Length) ? size_t(Width) - Length : 0;
    if (Left) {
      Out += Body;
      Out.append(Pad, ' ');
    } else {
      Out.append(Pad, ' ');
      Out += Body;
    }
  }
  return Out;
}

} // namespace kx

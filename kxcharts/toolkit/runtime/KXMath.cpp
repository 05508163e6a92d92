#include "kxcharts/toolkit/runtime/KXMath.h"

#include <atomic>
#include <charconv>
#include <chrono>
#include <cmath>
#include <string>

namespace kx {

namespace {

std::string NumberText(double X) {
  if (std::isnan(X)) return "NAN";
  if (std::isinf(X)) return X < 0 ? "-INF" : "INF";
  char Buf[32];
  const auto R = std::to_chars(Buf, Buf + sizeof Buf, X);
  return std::string(Buf, R.ptr);
}

// 2^63 is exact in a double; every double below it in magnitude fits an int64, and -2^63
// itself fits too.
constexpr double Int64Limit = 9223372036854775808.0;

int64_t ToInt64(double Whole, const char* Operation, double X) {
  if (!(Whole >= -Int64Limit && Whole < Int64Limit))
    throw EInvalidOp(std::string("Invalid floating point operation: ") + Operation + " of " +
                     NumberText(X) + " has no 64-bit integer result");
  return static_cast<int64_t>(Whole);
}

} // namespace

// --- Comparison ---

bool SameValue(double A, double B, double Epsilon) {
  if (A == B) return true;
  // An infinity would make the default tolerance infinite too.
  if (std::isinf(A) || std::isinf(B)) return false;
  if (Epsilon == 0)
    Epsilon = Max(Min(std::fabs(A), std::fabs(B)) * DoubleResolution, DoubleResolution);
  return A > B ? (A - B) <= Epsilon : (B - A) <= Epsilon;
}

bool SameValue(float A, float B, float Epsilon) {
  if (A == B) return true;
  if (std::isinf(A) || std::isinf(B)) return false;
  if (Epsilon == 0)
    Epsilon = Max(Min(std::fabs(A), std::fabs(B)) * SingleResolution, SingleResolution);
  return A > B ? (A - B) <= Epsilon : (B - A) <= Epsilon;
}

bool IsNan(double X) {
  return std::isnan(X);
}

bool IsInfinite(double X) {
  return std::isinf(X);
}

TValueSign Sign(int32_t X) {
  return (X > 0) - (X < 0);
}

TValueSign Sign(int64_t X) {
  return (X > 0) - (X < 0);
}

TValueSign Sign(double X) {
  return (X > 0) - (X < 0);
}

// --- Whole numbers ---

int64_t Round(double X) {
  // Done by hand rather than with rint, which depends on the thread's rounding mode.
  double Whole = std::floor(X);
  const double Rest = X - Whole; // exact: X and floor(X) share their exponent range
  if (Rest > 0.5 || (Rest == 0.5 && std::fmod(Whole, 2.0) != 0)) Whole += 1;
  return ToInt64(Whole, "Round", X);
}

int64_t Trunc(double X) {
  return ToInt64(std::trunc(X), "Trunc", X);
}

int64_t Floor(double X) {
  return ToInt64(std::floor(X), "Floor", X);
}

int64_t Ceil(double X) {
  return ToInt64(std::ceil(X), "Ceil", X);
}

double Int(double X) {
  return std::trunc(X);
}

double Frac(double X) {
  return X - std::trunc(X);
}

// --- Powers and logarithms ---

double Power(double Base, double Exponent) {
  if (Exponent == 0) return 1;
  return std::pow(Base, Exponent);
}

double IntPower(double Base, int32_t Exponent) {
  // Unsigned, so that the magnitude of INT32_MIN is representable.
  uint32_t Y = Exponent < 0 ? 0u - static_cast<uint32_t>(Exponent) : uint32_t(Exponent);
  double Result = 1, Factor = Base;
  while (Y > 0) {
    if (Y & 1) Result *= Factor;
    Y >>= 1;
    if (Y) Factor *= Factor;
  }
  return Exponent < 0 ? 1 / Result : Result;
}

double Log10(double X) {
  return std::log10(X);
}

double Log2(double X) {
  return std::log2(X);
}

double LogN(double Base, double X) {
  return static_cast<double>(std::log(static_cast<long double>(X)) /
                             std::log(static_cast<long double>(Base)));
}

// --- Ranges ---

namespace {

template <class T> T MinOf(std::span<const T> Data, const char* Name) {
  if (Data.empty()) throw EInvalidArgument(std::string(Name) + " of an empty array");
  T Result = Data[0];
  for (const T& V : Data.subspan(1))
    if (Result > V) Result = V;
  return Result;
}

template <class T> T MaxOf(std::span<const T> Data, const char* Name) {
  if (Data.empty()) throw EInvalidArgument(std::string(Name) + " of an empty array");
  T Result = Data[0];
  for (const T& V : Data.subspan(1))
    if (Result < V) Result = V;
  return Result;
}

template <class T> T Ensure(T Value, T AMin, T AMax) {
  if (AMin > AMax) throw EInvalidArgument("EnsureRange: the minimum is above the maximum");
  if (Value < AMin) return AMin;
  if (Value > AMax) return AMax;
  return Value;
}

} // namespace

double MinValue(std::span<const double> Data) {
  return MinOf(Data, "MinValue");
}

double MaxValue(std::span<const double> Data) {
  return MaxOf(Data, "MaxValue");
}

int32_t MinIntValue(std::span<const int32_t> Data) {
  return MinOf(Data, "MinIntValue");
}

int32_t MaxIntValue(std::span<const int32_t> Data) {
  return MaxOf(Data, "MaxIntValue");
}

int32_t EnsureRange(int32_t Value, int32_t AMin, int32_t AMax) {
  return Ensure(Value, AMin, AMax);
}

int64_t EnsureRange(int64_t Value, int64_t AMin, int64_t AMax) {
  return Ensure(Value, AMin, AMax);
}

double EnsureRange(double Value, double AMin, double AMax) {
  return Ensure(Value, AMin, AMax);
}

bool InRange(int32_t Value, int32_t AMin, int32_t AMax) {
  return Value >= AMin && Value <= AMax;
}

bool InRange(int64_t Value, int64_t AMin, int64_t AMax) {
  return Value >= AMin && Value <= AMax;
}

bool InRange(double Value, double AMin, double AMax) {
  return Value >= AMin && Value <= AMax;
}

// --- Random numbers ---

namespace {

// Atomic only so that a stray second thread cannot make a data race of it; the library
// itself runs on one thread.
std::atomic<uint32_t> GSeed{0};

uint32_t NextSeed() {
  const uint32_t Next = GSeed.load(std::memory_order_relaxed) * 0x08088405u + 1u;
  GSeed.store(Next, std::memory_order_relaxed);
  return Next;
}

} // namespace

double Random() {
  return NextSeed() * (1.0 / 4294967296.0);
}

int32_t Random(int32_t Range) {
  if (Range <= 0) return 0;
  return static_cast<int32_t>((uint64_t(NextSeed()) * uint64_t(Range)) >> 32);
}

void Randomize() {
  const auto Ticks = std::chrono::system_clock::now().time_since_epoch().count() ^
                     std::chrono::steady_clock::now().time_since_epoch().count();
  GSeed.store(static_cast<uint32_t>(Ticks ^ (Ticks >> 32)), std::memory_order_relaxed);
}

int32_t RandSeed() {
  return static_cast<int32_t>(GSeed.load(std::memory_order_relaxed));
}

void SetRandSeed(int32_t Seed) {
  GSeed.store(static_cast<uint32_t>(Seed), std::memory_order_relaxed);
}

// --- Statistics ---

namespace {

void NeedValues(std::span<const double> Data, size_t Least, const char* Name) {
  if (Data.size() < Least)
    throw EInvalidOp(std::string("Invalid floating point operation: ") + Name + " needs at least " +
                     (Least == 1 ? "one value" : "two values"));
}

} // namespace

double Sum(std::span<const double> Data) {
  double Result = 0;
  for (double V : Data)
    Result += V;
  return Result;
}

double SumOfSquares(std::span<const double> Data) {
  double Result = 0;
  for (double V : Data)
    Result += V * V;
  return Result;
}

void SumsAndSquares(std::span<const double> Data, double& Sum, double& SumOfSquares) {
  Sum = 0;
  SumOfSquares = 0;
  for (double V : Data) {
    Sum += V;
    SumOfSquares += V * V;
  }
}

double Mean(std::span<const double> Data) {
  NeedValues(Data, 1, "Mean");
  return Sum(Data) / static_cast<double>(Data.size());
}

double TotalVariance(std::span<const double> Data) {
  NeedValues(Data, 1, "TotalVariance");
  // Deviations are taken from the first value before the mean, so that equal values give
  // exactly 0 (the mean of seven times 0.1 is not 0.1) and large offsets cancel early.
  const double Shift = Data[0];
  double ShiftedSum = 0;
  for (double V : Data)
    ShiftedSum += V - Shift;
  const double ShiftedMean = ShiftedSum / static_cast<double>(Data.size());
  double Result = 0;
  for (double V : Data) {
    const double D = (V - Shift) - ShiftedMean;
    Result += D * D;
  }
  return Result;
}

double Variance(std::span<const double> Data) {
  NeedValues(Data, 2, "Variance");
  return TotalVariance(Data) / static_cast<double>(Data.size() - 1);
}

double PopnVariance(std::span<const double> Data) {
  NeedValues(Data, 1, "PopnVariance");
  return TotalVariance(Data) / static_cast<double>(Data.size());
}

double StdDev(std::span<const double> Data) {
  NeedValues(Data, 2, "StdDev");
  return std::sqrt(Variance(Data));
}

double PopnStdDev(std::span<const double> Data) {
  NeedValues(Data, 1, "PopnStdDev");
  return std::sqrt(PopnVariance(Data));
}

double Norm(std::span<const double> Data) {
  return std::sqrt(SumOfSquares(Data));
}

void MeanAndStdDev(std::span<const double> Data, double& Mean, double& StdDev) {
  NeedValues(Data, 1, "MeanAndStdDev");
  Mean = kx::Mean(Data);
  StdDev = Data.size() == 1 ? 0 : std::sqrt(TotalVariance(Data) / double(Data.size() - 1));
}

} // namespace kx

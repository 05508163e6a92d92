#pragma once
// Numbers: comparison with a tolerance, rounding to integers, powers and logarithms,
// ranges, the process-wide pseudo-random generator, and the statistics of a sample.
//
// Bad numbers never reach undefined behaviour. Operations that must produce an integer
// (Round, Trunc, Floor, Ceil) raise EInvalidOp for NaN, infinities and values outside the
// int64 range; operations that produce a double follow IEEE arithmetic (a NaN in gives a
// NaN out, log of 0 is -Inf).

#include <cstdint>
#include <span>

#include "kxcharts/toolkit/runtime/KXSysUtils.h"

namespace kx {

// An argument that the operation cannot work with at all (the minimum of no values).
class EInvalidArgument : public Exception {
public:
  using Exception::Exception;
};

// --- Comparison ---

// The fuzz of SameValue when no tolerance is given: 1000 times the precision of the type.
inline constexpr double DoubleResolution = 1E-15 * 1000;
inline constexpr float SingleResolution = 1E-7f * 1000;

// True when A and B differ by at most Epsilon. An Epsilon of 0 asks for the default
// tolerance, the larger of Resolution and Resolution times the smaller magnitude
// (Resolution: DoubleResolution, or SingleResolution in the float form). Equal values
// (also equal infinities) are always the same; a NaN is the same as nothing.
bool SameValue(double A, double B, double Epsilon = 0);
bool SameValue(float A, float B, float Epsilon = 0);

bool IsNan(double X);
bool IsInfinite(double X);

// -1, 0 or 1. NaN counts as 0.
using TValueSign = int32_t;
TValueSign Sign(int32_t X);
TValueSign Sign(int64_t X);
TValueSign Sign(double X);

// --- Whole numbers ---

// Nearest integer, halves to the even neighbour (2.5 -> 2, 3.5 -> 4, -2.5 -> -2).
// Raises EInvalidOp for NaN, infinities and results outside int64.
int64_t Round(double X);
// The integer part, towards zero. Raises like Round.
int64_t Trunc(double X);
// The largest integer not above X / the smallest not below X. Raise like Round.
int64_t Floor(double X);
int64_t Ceil(double X);
// The integer part as a double (NaN and infinities pass through).
double Int(double X);
// X minus its integer part, with the sign of X (NaN for infinities).
double Frac(double X);

// --- Powers and logarithms ---

// Base raised to Exponent. An Exponent of 0 gives 1 for every base; a negative base with a
// fractional exponent gives NaN, 0 to a negative power +Inf.
double Power(double Base, double Exponent);
// Base raised to an integer power by repeated squaring; a negative power is the reciprocal.
double IntPower(double Base, int32_t Exponent);
double Log10(double X);
double Log2(double X);
// The logarithm of X to the base Base. Worked out in extended precision so that exact
// powers come out whole (LogN(10, 1000) is 3, not 2.9999999999999996).
double LogN(double Base, double X);

inline constexpr double Pi = 3.141592653589793238462643383279502884;
constexpr double DegToRad(double Degrees) {
  return Degrees * (Pi / 180);
}
constexpr double RadToDeg(double Radians) {
  return Radians * (180 / Pi);
}

// --- Ranges ---

// The smaller / larger of two numbers of one type. Mixed types do not compile, as the
// caller is to say which arithmetic is meant. With a NaN the second argument wins unless
// the comparison holds (Min(NaN, 1) is 1, Min(1, NaN) NaN).
constexpr int32_t Min(int32_t A, int32_t B) {
  return A < B ? A : B;
}
constexpr int64_t Min(int64_t A, int64_t B) {
  return A < B ? A : B;
}
constexpr float Min(float A, float B) {
  return A < B ? A : B;
}
constexpr double Min(double A, double B) {
  return A < B ? A : B;
}
constexpr int32_t Max(int32_t A, int32_t B) {
  return A > B ? A : B;
}
constexpr int64_t Max(int64_t A, int64_t B) {
  return A > B ? A : B;
}
constexpr float Max(float A, float B) {
  return A > B ? A : B;
}
constexpr double Max(double A, double B) {
  return A > B ? A : B;
}

// The least / greatest element. Raise EInvalidArgument for no elements. A NaN element
// never replaces the running result (it only stands when it is the first).
double MinValue(std::span<const double> Data);
double MaxValue(std::span<const double> Data);
int32_t MinIntValue(std::span<const int32_t> Data);
int32_t MaxIntValue(std::span<const int32_t> Data);

// Value moved into [AMin, AMax]. AMin above AMax raises EInvalidArgument.
int32_t EnsureRange(int32_t Value, int32_t AMin, int32_t AMax);
int64_t EnsureRange(int64_t Value, int64_t AMin, int64_t AMax);
double EnsureRange(double Value, double AMin, double AMax);
// AMin <= Value <= AMax.
bool InRange(int32_t Value, int32_t AMin, int32_t AMax);
bool InRange(int64_t Value, int64_t AMin, int64_t AMax);
bool InRange(double Value, double AMin, double AMax);

// --- Random numbers ---
//
// One process-wide linear congruential generator (multiplier 0x08088405, increment 1,
// modulo 2^32), so that a fixed seed gives a repeatable sequence.

// Uniform in [0, 1).
double Random();
// Uniform integer in [0, Range); 0 when Range is 0 or below.
int32_t Random(int32_t Range);
// Seeds the generator from the clock.
void Randomize();
int32_t RandSeed();
void SetRandSeed(int32_t Seed);

// --- Statistics ---
//
// Over any run of doubles. Sums run in index order. Where the definitions divide 0 by 0
// (the mean of no values, the sample variance of one value) the operation raises
// EInvalidOp rather than answering NaN; sums of no values are 0.

double Sum(std::span<const double> Data);
double SumOfSquares(std::span<const double> Data);
void SumsAndSquares(std::span<const double> Data, double& Sum, double& SumOfSquares);
// Raises EInvalidOp for no values.
double Mean(std::span<const double> Data);
// The sum of squared deviations from the mean. Worked out in two passes, so that it is
// never negative (equal values give exactly 0). Raises EInvalidOp for no values.
double TotalVariance(std::span<const double> Data);
// TotalVariance / (n - 1); raises EInvalidOp for fewer than two values.
double Variance(std::span<const double> Data);
// TotalVariance / n; raises EInvalidOp for no values.
double PopnVariance(std::span<const double> Data);
// Square roots of Variance and PopnVariance, raising alike.
double StdDev(std::span<const double> Data);
double PopnStdDev(std::span<const double> Data);
// The Euclidean length, the square root of SumOfSquares (0 for no values).
double Norm(std::span<const double> Data);
// Mean and sample standard deviation in one call. One value gives that value as the mean
// and 0 as the deviation; no values raise EInvalidOp.
void MeanAndStdDev(std::span<const double> Data, double& Mean, double& StdDev);

} // namespace kx

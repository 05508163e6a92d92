// The calculations of the chart functions: the class operations that reduce a range of
// source values to a figure, add figures to a target, and choose the calculation in force.

#include "kxcharts/functions/KXChartFunction.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>

#include "kxcharts/toolkit/runtime/KXMath.h"

namespace kx {

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

using TReduce = double (*)(TKXCustomChart*, int32_t, int32_t, TDateTime&, int32_t);

// The range cut to the values there are; Count is 0 when nothing is left (or no chart).
struct TRange {
  const TKXChartValues* Values = nullptr;
  int32_t Low = 0, High = -1, Dim = 0;
  int32_t Count() const { return High >= Low ? High - Low + 1 : 0; }
  double At(int32_t I) const { return Values->Items(I)->GetValue(Dim); }
};

TRange Cut(const TKXCustomChart* Chart, int32_t Low, int32_t High, int32_t Dim) {
  if (!Chart) return {};
  const TKXChartValues* V = Chart->Values();
  return {V, std::max(Low, 0), std::min(High, V->Count() - 1),
          Dim < 0 ? V->DefaultDimension() : Dim};
}

// Euclid's rule with the remainder truncated, in 64 bits so that no pair of 32-bit numbers
// overflows (the smallest one modulo -1).
int64_t Gcd(int64_t A, int64_t B) {
  while (B != 0) {
    const int64_t R = A % B;
    A = B;
    B = R;
  }
  return A;
}

// Each value of the range through Add, all with the same stamp: the copy, for the class's
// own AddValue and for the one a descendant's metaclass names.
template <class TAdd>
void CopyRange(TAdd&& Add, TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
               int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp, int32_t SourceDim,
               int32_t TargetDim) {
  const TRange R = Cut(SourceChart, IndexLow, IndexHigh, SourceDim);
  for (int32_t I = R.Low; I <= R.High; ++I)
    Add(TargetChart, R.At(I), TimeStamp, TargetDim);
}

// A statistic of the range's numbers; NaN below MinCount values, where it would divide by 0
// (the sample figures of one value, any mean of none): there is nothing to measure.
template <double (*Stat)(std::span<const double>), size_t MinCount>
double Statistic(TKXCustomChart* Chart, int32_t IndexLow, int32_t IndexHigh, int32_t Dim) {
  const TKXChartValueTypeArray A = TKXCustomChartFunction::ToArray(Chart, IndexLow, IndexHigh, Dim);
  return A.size() < MinCount ? NaN : Stat(A);
}

template <TReduce Reduce>
void AddReduced(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart, int32_t IndexLow,
                int32_t IndexHigh, TDateTime TimeStamp, int32_t SourceDim, int32_t TargetDim) {
  const double V = Reduce(SourceChart, IndexLow, IndexHigh, TimeStamp, SourceDim);
  TKXCustomChartFunction::AddValue(TargetChart, V, TimeStamp, TargetDim);
}

} // namespace

// --- Reducing forms ---

double TKXCustomChartFunction::Sum(TKXCustomChart* SourceChart, int32_t IndexLow,
                                   int32_t IndexHigh, TDateTime&, int32_t SourceDim) {
  const TRange R = Cut(SourceChart, IndexLow, IndexHigh, SourceDim);
  double S = 0.0;
  for (int32_t I = R.Low; I <= R.High; ++I)
    S += R.At(I);
  return S;
}

double TKXCustomChartFunction::Average(TKXCustomChart* SourceChart, int32_t IndexLow,
                                       int32_t IndexHigh, TDateTime& TimeStamp,
                                       int32_t SourceDim) {
  const TRange R = Cut(SourceChart, IndexLow, IndexHigh, SourceDim);
  if (R.Count() == 0) return NaN;
  return Sum(SourceChart, R.Low, R.High, TimeStamp, SourceDim) / R.Count();
}

double TKXCustomChartFunction::Median(TKXCustomChart* SourceChart, int32_t IndexLow,
                                      int32_t IndexHigh, TDateTime& TimeStamp,
                                      int32_t SourceDim) {
  const TRange R = Cut(SourceChart, IndexLow, IndexHigh, SourceDim);
  if (R.Count() == 0) return NaN;
  const int32_t C = R.High - R.Low;
  const int32_t M = R.Low + C / 2;
  const double Result = C % 2 == 1 ? (R.At(M) + R.At(M + 1)) / 2 : R.At(M);
  if (R.Values->IsDateTime()) TimeStamp = Result;
  return Result;
}

double TKXCustomChartFunction::Minimum(TKXCustomChart* SourceChart, int32_t IndexLow,
                                       int32_t IndexHigh, TDateTime&, int32_t SourceDim) {
  const TRange R = Cut(SourceChart, IndexLow, IndexHigh, SourceDim);
  if (R.Count() == 0) return NaN;
  double M = R.At(R.Low);
  for (int32_t I = R.Low + 1; I <= R.High; ++I)
    if (const double X = R.At(I); X < M) M = X;
  return M;
}

double TKXCustomChartFunction::Maximum(TKXCustomChart* SourceChart, int32_t IndexLow,
                                       int32_t IndexHigh, TDateTime&, int32_t SourceDim) {
  const TRange R = Cut(SourceChart, IndexLow, IndexHigh, SourceDim);
  if (R.Count() == 0) return NaN;
  double M = R.At(R.Low);
  for (int32_t I = R.Low + 1; I <= R.High; ++I)
    if (const double X = R.At(I); X > M) M = X;
  return M;
}

double TKXCustomChartFunction::GreatestCommonDivisor(TKXCustomChart* SourceChart,
                                                     int32_t IndexLow, int32_t IndexHigh,
                                                     TDateTime&, int32_t SourceDim) {
  const TRange R = Cut(SourceChart, IndexLow, IndexHigh, SourceDim);
  if (R.Count() == 0) return 0.0;
  constexpr double Lo = std::numeric_limits<int32_t>::min();
  constexpr double Hi = std::numeric_limits<int32_t>::max();
  // Folded from the right, as Gcd(e0, Gcd(e1, ... Gcd(e[n-2], e[n-1]))): the order of the
  // arguments decides the sign of a result over negative values.
  int64_t G = 0;
  for (int32_t I = R.High; I >= R.Low; --I) {
    const double X = std::nearbyint(R.At(I)); // halves to even
    if (!(X >= Lo && X <= Hi)) return NaN;
    G = I == R.High ? static_cast<int64_t>(X) : Gcd(static_cast<int64_t>(X), G);
  }
  return static_cast<double>(G);
}

double TKXCustomChartFunction::TotalVariance(TKXCustomChart* SourceChart, int32_t IndexLow,
                                             int32_t IndexHigh, TDateTime&, int32_t SourceDim) {
  return Statistic<kx::TotalVariance, 1>(SourceChart, IndexLow, IndexHigh, SourceDim);
}

double TKXCustomChartFunction::Variance(TKXCustomChart* SourceChart, int32_t IndexLow,
                                        int32_t IndexHigh, TDateTime&, int32_t SourceDim) {
  return Statistic<kx::Variance, 2>(SourceChart, IndexLow, IndexHigh, SourceDim);
}

double TKXCustomChartFunction::PopnVariance(TKXCustomChart* SourceChart, int32_t IndexLow,
                                            int32_t IndexHigh, TDateTime&, int32_t SourceDim) {
  return Statistic<kx::PopnVariance, 1>(SourceChart, IndexLow, IndexHigh, SourceDim);
}

double TKXCustomChartFunction::StdDev(TKXCustomChart* SourceChart, int32_t IndexLow,
                                      int32_t IndexHigh, TDateTime&, int32_t SourceDim) {
  return Statistic<kx::StdDev, 2>(SourceChart, IndexLow, IndexHigh, SourceDim);
}

double TKXCustomChartFunction::PopnStdDev(TKXCustomChart* SourceChart, int32_t IndexLow,
                                          int32_t IndexHigh, TDateTime&, int32_t SourceDim) {
  return Statistic<kx::PopnStdDev, 1>(SourceChart, IndexLow, IndexHigh, SourceDim);
}

double TKXCustomChartFunction::SumOfSquares(TKXCustomChart* SourceChart, int32_t IndexLow,
                                            int32_t IndexHigh, TDateTime&, int32_t SourceDim) {
  return Statistic<kx::SumOfSquares, 0>(SourceChart, IndexLow, IndexHigh, SourceDim);
}

double TKXCustomChartFunction::Norm(TKXCustomChart* SourceChart, int32_t IndexLow,
                                    int32_t IndexHigh, TDateTime&, int32_t SourceDim) {
  return Statistic<kx::Norm, 0>(SourceChart, IndexLow, IndexHigh, SourceDim);
}

// --- Adding forms ---

#define KX_ADDING_FORM(Name)                                                                       \
  void TKXCustomChartFunction::Name(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,     \
                                    int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,      \
                                    int32_t SourceDim, int32_t TargetDim) {                        \
    AddReduced<&TKXCustomChartFunction::Name>(SourceChart, TargetChart, IndexLow, IndexHigh,       \
                                              TimeStamp, SourceDim, TargetDim);                    \
  }

KX_ADDING_FORM(Sum)
KX_ADDING_FORM(Median)
KX_ADDING_FORM(Average)
KX_ADDING_FORM(Minimum)
KX_ADDING_FORM(Maximum)
KX_ADDING_FORM(GreatestCommonDivisor)
KX_ADDING_FORM(StdDev)
KX_ADDING_FORM(PopnStdDev)
KX_ADDING_FORM(Variance)
KX_ADDING_FORM(PopnVariance)
KX_ADDING_FORM(TotalVariance)
KX_ADDING_FORM(SumOfSquares)
KX_ADDING_FORM(Norm)

#undef KX_ADDING_FORM

void TKXCustomChartFunction::Copy(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                                  int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                                  int32_t SourceDim, int32_t TargetDim) {
  CopyRange(&TKXCustomChartFunction::AddValue, SourceChart, TargetChart, IndexLow, IndexHigh,
            TimeStamp, SourceDim, TargetDim);
}

// --- Helpers ---

void TKXCustomChartFunction::AddValue(TKXCustomChart* Chart, double Value, TDateTime TimeStamp,
                                      int32_t TargetDim) {
  if (!Chart) return;
  TKXChartValues* V = Chart->Values();
  const int32_t N = V->DimensionCount();
  std::array<double, 8> Small{};
  TKXChartValueTypeArray Large;
  std::span<double> Numbers(Small.data(), static_cast<size_t>(std::min(N, 8)));
  if (N > 8) {
    Large.assign(static_cast<size_t>(N), 0.0);
    Numbers = std::span<double>(Large);
  }
  Numbers[0] = V->Count();
  const int32_t TimeDim = V->TimeDimension();
  if (TimeDim >= 0 && TimeDim < N) Numbers[TimeDim] = TimeStamp;
  const int32_t Dim = std::min(TargetDim < 0 ? V->DefaultDimension() : TargetDim, N - 1);
  Numbers[Dim] = Value;
  V->Add(std::span<const double>(Numbers), "", TColor(-1));
}

int32_t TKXCustomChartFunction::GetPeriodIndex(TKXCustomChart* Chart, int32_t IndexLow,
                                               TDateTime StopTime) {
  if (!Chart) return IndexLow;
  const TKXChartValues* V = Chart->Values();
  const int32_t Count = V->Count();
  int32_t I = std::max(IndexLow, 0);
  // "Not above" lets a NaN join the period it stands in.
  while (I < Count && !(V->Items(I)->GetValue(0) > StopTime))
    ++I;
  return std::max(I - 1, IndexLow);
}

TKXChartValueTypeArray TKXCustomChartFunction::ToArray(TKXCustomChart* Chart, int32_t IndexLow,
                                                       int32_t IndexHigh, int32_t SourceDim) {
  const TRange R = Cut(Chart, IndexLow, IndexHigh, SourceDim);
  TKXChartValueTypeArray A;
  A.reserve(static_cast<size_t>(R.Count()));
  for (int32_t I = R.Low; I <= R.High; ++I)
    A.push_back(R.At(I));
  return A;
}

// --- The calculation in force ---

void TKXCustomChartFunction::SetFunction() {
  // The results go to AddValue of the function's own class, which a descendant may have
  // redeclared.
  const TKXChartFunctionClass Meta = FunctionClass();
  const auto Reducing = [Meta](TReduce Reduce) -> TKXChartFunctionEvent {
    return [Meta, Reduce](TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                          int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                          int32_t SourceDim, int32_t TargetDim) {
      const double V = Reduce(SourceChart, IndexLow, IndexHigh, TimeStamp, SourceDim);
      Meta->AddValue(TargetChart, V, TimeStamp, TargetDim);
    };
  };
  switch (FFunctionType) {
  case cfCustom: FChartFunction = FOnCustomFunction; break;
  case cfCopy:
    FChartFunction = [Meta](TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                            int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                            int32_t SourceDim, int32_t TargetDim) {
      CopyRange([Meta](TKXCustomChart* C, double V, TDateTime T,
                       int32_t D) { Meta->AddValue(C, V, T, D); },
                SourceChart, TargetChart, IndexLow, IndexHigh, TimeStamp, SourceDim, TargetDim);
    };
    break;
  case cfSum: FChartFunction = Reducing(&Sum); break;
  case cfMedian: FChartFunction = Reducing(&Median); break;
  case cfAverage: FChartFunction = Reducing(&Average); break;
  case cfMinimum: FChartFunction = Reducing(&Minimum); break;
  case cfMaximum: FChartFunction = Reducing(&Maximum); break;
  case cfStdDev: FChartFunction = Reducing(&StdDev); break;
  case cfPopnStdDev: FChartFunction = Reducing(&PopnStdDev); break;
  case cfVariance: FChartFunction = Reducing(&Variance); break;
  case cfPopnVariance: FChartFunction = Reducing(&PopnVariance); break;
  case cfTotalVariance: FChartFunction = Reducing(&TotalVariance); break;
  case cfSumOfSquares: FChartFunction = Reducing(&SumOfSquares); break;
  case cfNorm: FChartFunction = Reducing(&Norm); break;
  case cfGreatestCommonDivisor: FChartFunction = Reducing(&GreatestCommonDivisor); break;
  default: FChartFunction = nullptr; break; // a number that names no type
  }
}

bool TKXCustomChartFunction::CalculatesPerPeriod() const {
  return FFunctionType != cfCustom && FFunctionType <= cfGreatestCommonDivisor;
}

} // namespace kx

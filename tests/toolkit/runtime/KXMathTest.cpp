#include "kxcharts/toolkit/runtime/KXMath.h"

#include <cmath>
#include <limits>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "support/KXTestSupport.h"

namespace kx {
namespace {

using test::Inf;
using test::NaN;

TEST(SameValue, ToleranceScalesWithTheSmallerMagnitude) {
  struct {
    double A, B;
    bool Same;
  } const Cases[] = {
      {1, 1 + 5e-13, true},      {1, 1 + 2e-12, false},    // 1e-12 near 1
      {0, 1e-12, true},          {0, 1.5e-12, false},      // never below 1e-12
      {1e6, 1e6 + 9e-7, true},   {1e6, 1e6 + 2e-6, false}, // 1e-12 of a million
      {-1e6, -1e6 - 9e-7, true}, {1e6, 2e6, false},        {Inf, Inf, true},
      {-Inf, Inf, false},        {NaN, NaN, false},        {NaN, 0, false},
  };
  for (const auto& C : Cases) {
    EXPECT_EQ(SameValue(C.A, C.B), C.Same) << C.A << " vs " << C.B;
    EXPECT_EQ(SameValue(C.B, C.A), C.Same) << C.B << " vs " << C.A;
  }
  EXPECT_TRUE(SameValue(1.0, 1.5, 0.5));
  EXPECT_FALSE(SameValue(1.0, 1.5, 0.4));
  // Singles use their coarser resolution: 1e-4 of the smaller.
  EXPECT_TRUE(SameValue(1.0f, 1.00009f));
  EXPECT_FALSE(SameValue(1.0f, 1.0002f));
  EXPECT_TRUE(SameValue(1000.0f, 1000.09f));
}

TEST(Round, HalvesGoToTheEvenNeighbour) {
  // clang-format off
  struct {
    double X;
    int64_t Expected;
  } const Cases[] = {
      {0.5, 0}, {1.5, 2}, {2.5, 2}, {3.5, 4}, {-0.5, 0}, {-1.5, -2}, {-2.5, -2},
      {2.5000000000000004, 3},
      {0.49999999999999994, 0}, // floor(x + 0.5) would give 1
      {4503599627370497.0, 4503599627370497},
      {-9223372036854775808.0, std::numeric_limits<int64_t>::min()}};
  // clang-format on
  for (const auto& C : Cases)
    EXPECT_EQ(Round(C.X), C.Expected) << C.X;
}

TEST(Round, IntegerConversionsRefuseNumbersWithoutAnInt64Result) {
  const double Bad[] = {NaN, Inf, -Inf, 9223372036854775808.0, -9.3e18, 1e300};
  for (double X : Bad) {
    EXPECT_THROW(Round(X), EInvalidOp) << X;
    EXPECT_THROW(Trunc(X), EInvalidOp) << X;
    EXPECT_THROW(Floor(X), EInvalidOp) << X;
    EXPECT_THROW(Ceil(X), EInvalidOp) << X;
  }
  EXPECT_EQ(test::MessageOf([] { Round(NaN); }),
            "Invalid floating point operation: Round of NAN has no 64-bit integer result");
}

TEST(Round, TruncFloorCeilIntAndFracAgreeOnSigns) {
  struct {
    double X;
    int64_t T, F, C;
    double Fr;
  } const Cases[] = {{2.75, 2, 2, 3, 0.75},
                     {-2.75, -2, -3, -2, -0.75},
                     {-3, -3, -3, -3, 0},
                     {0.25, 0, 0, 1, 0.25}};
  for (const auto& C : Cases) {
    EXPECT_EQ(Trunc(C.X), C.T) << C.X;
    EXPECT_EQ(Floor(C.X), C.F) << C.X;
    EXPECT_EQ(Ceil(C.X), C.C) << C.X;
    EXPECT_EQ(Int(C.X), double(C.T)) << C.X;
    EXPECT_EQ(Frac(C.X), C.Fr) << C.X;
  }
  EXPECT_TRUE(std::isnan(Int(NaN)));
  EXPECT_EQ(Int(-Inf), -Inf);
}

TEST(Power, ExactPowersOfEveryBaseGiveWholeLogarithms) {
  // Axes take Floor(LogN(b, x)) of exact powers; 2.9999999999999996 there would be a
  // wrong decade.
  for (double Base : {2.0, 3.0, 5.0, 7.0, 10.0, 16.0}) {
    int K = 0;
    for (double P = 1; P < 9e15; P *= Base, ++K) // exact doubles only
      EXPECT_EQ(LogN(Base, P), K) << Base << "^" << K;
  }
  double Half = 1;
  for (int K = 0; K <= 60; ++K, Half *= 0.5)
    EXPECT_EQ(LogN(0.5, Half), K) << K;
  for (int K = -20; K <= 22; ++K)
    EXPECT_EQ(Floor(LogN(10, std::pow(10.0, K))), K) << K;
  EXPECT_DOUBLE_EQ(Log10(1e-7), -7);
  EXPECT_EQ(Log2(1024), 10);
}

TEST(Power, SpecialCasesFollowIeeeWithoutRaising) {
  EXPECT_EQ(Power(NaN, 0), 1);
  EXPECT_EQ(Power(0, 3), 0);
  EXPECT_EQ(Power(0, -1), Inf);
  EXPECT_TRUE(std::isnan(Power(-8, 1.0 / 3)));
  EXPECT_EQ(Power(-2, 3), -8);
  EXPECT_EQ(Power(10, -3), 0.001);
  EXPECT_EQ(IntPower(2, -2), 0.25);
  EXPECT_EQ(IntPower(-3, 3), -27);
  EXPECT_EQ(IntPower(1, std::numeric_limits<int32_t>::min()), 1);
  EXPECT_EQ(IntPower(10, std::numeric_limits<int32_t>::min()), 0);
  EXPECT_EQ(Log10(0), -Inf);
  EXPECT_TRUE(std::isnan(Log10(-1)));
}

TEST(Ranges, MinValueAndMaxValueScanTheWholeArray) {
  const std::vector<double> Data{3, -1.5, 8, NaN, 2};
  EXPECT_EQ(MinValue(Data), -1.5);
  EXPECT_EQ(MaxValue(Data), 8);
  const std::vector<double> NanFirst{NaN, 1};
  EXPECT_TRUE(std::isnan(MinValue(NanFirst)));
  const std::vector<int32_t> Ints{4, -7, 9, 0};
  EXPECT_EQ(MinIntValue(Ints), -7);
  EXPECT_EQ(MaxIntValue(Ints), 9);
  EXPECT_THROW(MinValue({}), EInvalidArgument);
  EXPECT_THROW(MaxIntValue({}), EInvalidArgument);
}

TEST(Ranges, EnsureRangeClampsAndRefusesReversedBounds) {
  EXPECT_EQ(EnsureRange(15, 0, 10), 10);
  EXPECT_EQ(EnsureRange(-3.5, -1.0, 1.0), -1.0);
  EXPECT_EQ(EnsureRange(int64_t(5), int64_t(0), int64_t(10)), 5);
  EXPECT_THROW(EnsureRange(1, 10, 0), EInvalidArgument);
  EXPECT_TRUE(InRange(10, 0, 10));
  EXPECT_FALSE(InRange(NaN, -Inf, Inf));
  EXPECT_EQ(Sign(-0.0), 0);
  EXPECT_EQ(Sign(NaN), 0);
  EXPECT_EQ(Sign(int64_t(-9)), -1);
}

TEST(Random, FixedSeedRepeatsTheSequence) {
  SetRandSeed(1);
  Random();
  EXPECT_EQ(uint32_t(RandSeed()), 0x08088405u + 1u); // one step of the generator
  SetRandSeed(12345);
  std::vector<int32_t> First;
  for (int I = 0; I < 20; ++I)
    First.push_back(Random(1000));
  SetRandSeed(12345);
  for (int I = 0; I < 20; ++I)
    EXPECT_EQ(Random(1000), First[I]);
}

TEST(Random, DrawsStayInsideTheirRange) {
  SetRandSeed(7);
  std::set<int32_t> Seen;
  for (int I = 0; I < 2000; ++I) {
    const double X = Random();
    ASSERT_GE(X, 0.0);
    ASSERT_LT(X, 1.0);
    const int32_t N = Random(10);
    ASSERT_GE(N, 0);
    ASSERT_LT(N, 10);
    Seen.insert(N);
  }
  EXPECT_EQ(Seen.size(), 10u);
  EXPECT_EQ(Random(0), 0);
  EXPECT_EQ(Random(-5), 0);
}

TEST(Statistics, SampleAndPopulationFormsDivideByNMinusOneAndN) {
  const std::vector<double> Data{2, 4, 4, 4, 5, 5, 7, 9};
  EXPECT_EQ(Sum(Data), 40);
  EXPECT_EQ(Mean(Data), 5);
  EXPECT_EQ(SumOfSquares(Data), 232);
  EXPECT_DOUBLE_EQ(Norm(Data), std::sqrt(232.0));
  EXPECT_EQ(TotalVariance(Data), 32);
  EXPECT_EQ(PopnVariance(Data), 4);
  EXPECT_EQ(PopnStdDev(Data), 2);
  EXPECT_DOUBLE_EQ(Variance(Data), 32.0 / 7);
  EXPECT_DOUBLE_EQ(StdDev(Data), std::sqrt(32.0 / 7));
  double M = 0, S = 0, Sm = 0, Sq = 0;
  MeanAndStdDev(Data, M, S);
  SumsAndSquares(Data, Sm, Sq);
  EXPECT_EQ(M, 5);
  EXPECT_DOUBLE_EQ(S, StdDev(Data));
  EXPECT_EQ(Sm, 40);
  EXPECT_EQ(Sq, 232);
}

TEST(Statistics, EqualValuesHaveExactlyZeroSpread) {
  // The one-pass formula leaves a tiny negative here, whose square root is NaN.
  const std::vector<double> Data{0.1, 0.1, 0.1, 0.1, 0.1, 0.1, 0.1};
  EXPECT_EQ(TotalVariance(Data), 0);
  EXPECT_EQ(StdDev(Data), 0);
  EXPECT_EQ(PopnStdDev(Data), 0);
}

TEST(Statistics, EmptyAndSingleValueInputs) {
  const std::vector<double> None, One{3.5};
  EXPECT_EQ(Sum(None), 0);
  EXPECT_EQ(SumOfSquares(None), 0);
  EXPECT_EQ(Norm(None), 0);
  EXPECT_THROW(Mean(None), EInvalidOp);
  EXPECT_THROW(TotalVariance(None), EInvalidOp);
  EXPECT_THROW(PopnVariance(None), EInvalidOp);
  EXPECT_EQ(Mean(One), 3.5);
  EXPECT_EQ(TotalVariance(One), 0);
  EXPECT_EQ(PopnVariance(One), 0);
  EXPECT_EQ(PopnStdDev(One), 0);
  EXPECT_THROW(Variance(One), EInvalidOp);
  EXPECT_THROW(StdDev(One), EInvalidOp);
  double M = 0, S = -1;
  MeanAndStdDev(One, M, S);
  EXPECT_EQ(M, 3.5);
  EXPECT_EQ(S, 0);
  EXPECT_THROW(MeanAndStdDev(None, M, S), EInvalidOp);
}

} // namespace
} // namespace kx

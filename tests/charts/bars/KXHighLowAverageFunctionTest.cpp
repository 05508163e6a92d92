// The high-low-average function: the five figures of a period, each function type into a
// high-low-average and a candlestick target against values worked out by hand, the target
// kept live as the source changes, bad periods and targets, and the stored form.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "charts/KXChartsTestSupport.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/charts/bars/KXBarCharts.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {
namespace {

using test::TChartsForm;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

TEST(HighLowAverageFunction, APeriodGivesItsHighestLowestMeanLastAndFirst) {
  struct TCase {
    std::vector<double> Data, Want;
  };
  const TCase Cases[] = {
      {{3, 1, 2}, {3, 1, 2, 2, 3}},
      {{5}, {5, 5, 5, 5, 5}},
      {{2, 2, 7, 1}, {7, 1, 3, 1, 2}},
      {{-1, -4, 9, 0}, {9, -4, 1, 0, -1}},
      {{}, {}},
  };
  for (const TCase& K : Cases)
    EXPECT_EQ(TKXHighLowAverageChartFunction::HighLowAverageOpenClose(K.Data), K.Want)
        << K.Data.size();
}

// A line of six values, X 0 to 5, cut into periods of three values: the periods stand at X 1
// and X 4 (their middles).
class HLAFunction : public testing::Test {
protected:
  void SetUp() override {
    Form.reset(New<TChartsForm>(nullptr));
    Source = New<TKXLineChart>(Form.get());
    const double Y[] = {3, 1, 2, 4, 8, 6};
    for (int I = 0; I < 6; ++I)
      Source->Values()->Add(I, Y[I]);
    Candles = New<TKXCandleStickChart>(Form.get());
    Bars = New<TKXHighLowAverageChart>(Form.get());
  }
  TKXHighLowAverageChartFunction* Function(TKXCustomChart* Target, TKXHiLoAvgChartFunctionType T) {
    auto* F = New<TKXHighLowAverageChartFunction>(Form.get());
    F->SetFunctionType(T);
    F->SetPeriod(fpValueCount);
    F->SetPeriodValue(3);
    F->SetSourceChart(Source);
    F->SetTargetChart(static_cast<TKXHighLowAverageChart*>(Target));
    return F;
  }
  TOwned<TChartsForm> Form;
  TKXLineChart* Source = nullptr;
  TKXCandleStickChart* Candles = nullptr;
  TKXHighLowAverageChart* Bars = nullptr;
};

TEST_F(HLAFunction, EachTypeFillsItsTargetWithTheFiguresOfEachPeriod) {
  struct TCase {
    TKXHiLoAvgChartFunctionType Type;
    // Per period: High, Low, Average, Close, Open.
    double Want[2][5];
  };
  const TCase Cases[] = {
      {hfHighLow, {{3, 1, 2, 3, 1}, {8, 4, 6, 8, 4}}},
      {hfHighLowAverage, {{3, 1, 2, 3, 1}, {8, 4, 6, 8, 4}}},
      {hfHighLowMedian, {{3, 1, 1, 3, 1}, {8, 4, 8, 8, 4}}},
      {hfMeanStdDev, {{3, 1, 2, 3, 1}, {8, 4, 6, 8, 4}}},
      {hfHighLowAverageOpenClose, {{3, 1, 2, 2, 3}, {8, 4, 6, 6, 4}}},
  };
  for (const TCase& K : Cases) {
    SCOPED_TRACE(K.Type);
    auto* ToCandles = Function(Candles, K.Type);
    auto* ToBars = Function(Bars, K.Type);
    ASSERT_EQ(Candles->Values()->Count(), 2);
    ASSERT_EQ(Bars->Values()->Count(), 2);
    for (int P = 0; P < 2; ++P) {
      const TKXCandleStickChartValue* C = Candles->Values()->Items(P);
      const TKXHighLowAverageChartValue* B = Bars->Values()->Items(P);
      const double* W = K.Want[P];
      EXPECT_EQ(C->X(), P == 0 ? 1.0 : 4.0);
      EXPECT_EQ(B->X(), C->X());
      EXPECT_EQ(C->High(), W[0]) << P;
      EXPECT_EQ(C->Low(), W[1]) << P;
      EXPECT_EQ(C->Average(), W[2]) << P;
      EXPECT_EQ(C->Close(), W[3]) << P;
      EXPECT_EQ(C->Open(), W[4]) << P;
      EXPECT_EQ(B->High(), W[0]) << P;
      EXPECT_EQ(B->Low(), W[1]) << P;
      EXPECT_EQ(B->Average(), W[2]) << P;
    }
    ToCandles->Free();
    ToBars->Free();
  }
}

TEST_F(HLAFunction, TheTargetStaysLiveAndAPeriodOfOneValueIsThatValue) {
  auto* F = New<TKXHighLowAverageChartFunction>(Form.get());
  EXPECT_EQ(F->FunctionType(), hfHighLowAverageOpenClose) << "a new function's type";
  F->SetPeriod(fpValueCount);
  F->SetPeriodValue(3);
  F->SetSourceChart(Source);
  F->SetTargetChart(Candles);
  Source->Values()->Add(6, 10);
  ASSERT_EQ(Candles->Values()->Count(), 3);
  const TKXCandleStickChartValue* Last = Candles->Values()->Items(2);
  for (double N : {Last->High(), Last->Low(), Last->Average(), Last->Close(), Last->Open()})
    EXPECT_EQ(N, 10.0);
  Source->Values()->Items(4)->SetY(-3);
  EXPECT_EQ(Candles->Values()->Items(1)->Low(), -3.0);
  EXPECT_EQ(Candles->Values()->Items(1)->High(), 6.0);
  Source->Values()->Clear();
  EXPECT_EQ(Candles->Values()->Count(), 0) << "an empty source leaves an empty target";
}

TEST_F(HLAFunction, NoNumbersAndTargetsOfAnotherKindGiveADefinedResult) {
  Source->Values()->Items(1)->SetY(NaN);
  Function(Bars, hfHighLowAverageOpenClose);
  ASSERT_EQ(Bars->Values()->Count(), 2);
  EXPECT_TRUE(std::isnan(Bars->Values()->Items(0)->Average()));
  EXPECT_EQ(Bars->Values()->Items(1)->High(), 8.0) << "the next period is whole";
  // A line target takes no high-low-average value.
  auto* Line = New<TKXLineChart>(Form.get());
  const double Numbers[] = {1, 2, 3};
  TKXHighLowAverageChartFunction::AddValue(Line, Numbers);
  EXPECT_EQ(Line->Values()->Count(), 0);
  TKXHighLowAverageChartFunction::AddValue(Bars, std::span<const double>());
  EXPECT_EQ(Bars->Values()->Count(), 2);
  // Two numbers: X and a high; the low 0 and the middle halfway.
  const double Two[] = {9, 4};
  TKXHighLowAverageChartFunction::AddValue(Candles, Two);
  const TKXCandleStickChartValue* V = Candles->Values()->Items(0);
  EXPECT_EQ(V->Average(), 2.0);
  EXPECT_EQ(V->Close(), 4.0);
  EXPECT_EQ(V->Open(), 0.0);
}

TEST_F(HLAFunction, TheStoredFormKeepsTypeAndChartsAndCalculatesOnLoading) {
  StartChartsModule();
  StartBarChartsModule();
  RegisterClasses({ClassOf<TChartsForm>()});
  Form->SetName("Form1");
  Source->SetName("Source");
  Candles->SetName("Candles");
  Bars->SetName("Bars");
  auto* F = Function(Candles, hfHighLow);
  F->SetName("Fn");
  TOwned<TChartsForm> Copy(New<TChartsForm>(nullptr));
  LoadFormFromString(Copy.get(), SaveFormToString(Form.get()));
  auto* F2 = dynamic_cast<TKXHighLowAverageChartFunction*>(Copy->FindComponent("Fn"));
  ASSERT_NE(F2, nullptr);
  EXPECT_EQ(F2->FunctionType(), hfHighLow);
  EXPECT_EQ(F2->Period(), fpValueCount);
  EXPECT_EQ(F2->TargetChart(), Copy->FindComponent("Candles"));
  ASSERT_EQ(F2->TargetChart()->Values()->Count(), 2);
  EXPECT_EQ(F2->TargetChart()->Values()->Items(1)->High(), 8.0);
}

} // namespace
} // namespace kx

#pragma once
// What the function tests share: a form with a source line chart, a target line chart and a
// function between them, and the target read back as (X, Y) pairs.

#include <cmath>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/functions/KXChartFunction.h"
#include "support/KXTestSupport.h"

namespace kx::test {

class TFunctionsForm : public TComponent {
  KX_CLASS(TFunctionsForm, TComponent)

public:
  using TComponent::TComponent;
};

using TXYList = std::vector<std::pair<double, double>>;

inline TXYList ReadXY(const TKXCustomChart* Chart) {
  TXYList L;
  for (TKXChartValue* V : *Chart->Values())
    L.emplace_back(V->GetValue(0), V->GetValue(1));
  return L;
}

// Equal within Tolerance, NaN equal to NaN.
inline bool SameNumber(double A, double B, double Tolerance = 1e-9) {
  if (std::isnan(A) || std::isnan(B)) return std::isnan(A) && std::isnan(B);
  return A == B || std::fabs(A - B) <= Tolerance;
}

inline void ExpectXY(const TXYList& Actual, const TXYList& Expected, double Tolerance = 1e-9) {
  ASSERT_EQ(Actual.size(), Expected.size());
  for (size_t I = 0; I < Actual.size(); ++I) {
    EXPECT_TRUE(SameNumber(Actual[I].first, Expected[I].first, Tolerance))
        << "X of " << I << ": " << Actual[I].first << " vs " << Expected[I].first;
    EXPECT_TRUE(SameNumber(Actual[I].second, Expected[I].second, Tolerance))
        << "Y of " << I << ": " << Actual[I].second << " vs " << Expected[I].second;
  }
}

class FunctionFixture : public testing::Test {
protected:
  static void SetUpTestSuite() {
    StartChartsModule();
    StartChartFunctionModule();
  }
  void SetUp() override {
    Form.reset(New<TFunctionsForm>(nullptr));
    Source = New<TKXLineChart>(Form.get());
    Source->SetName("Source");
    Target = New<TKXLineChart>(Form.get());
    Target->SetName("Target");
    Function = New<TKXChartFunction>(Form.get());
    Function->SetName("Function");
  }
  // Adds (x, y) pairs in one bracket.
  void Fill(const TXYList& XY) {
    TUpdateScope<TKXChartValues> Scope(Source->Values());
    for (const auto& [X, Y] : XY)
      Source->Values()->Add(X, Y);
  }
  // The values (i, i + 1) for i below N.
  void FillRamp(int N) {
    TXYList XY;
    for (int I = 0; I < N; ++I)
      XY.emplace_back(I, I + 1);
    Fill(XY);
  }
  void Wire(TKXChartFunctionType Type, TKXChartFunctionPeriod Period, double PeriodValue) {
    Function->SetFunctionType(Type);
    Function->SetPeriod(Period);
    Function->SetPeriodValue(PeriodValue);
    Function->SetSourceChart(Source);
    Function->SetTargetChart(Target);
  }
  TOwned<TFunctionsForm> Form;
  TKXLineChart* Source = nullptr;
  TKXLineChart* Target = nullptr;
  TKXChartFunction* Function = nullptr;
};

} // namespace kx::test

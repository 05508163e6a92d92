// The incremental mode against the whole rebuild: two functions of the same settings on
// one source, one incremental, one not, must leave targets with the same numbers after
// every change a random walk makes to the source.
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "KXFunctionsTestSupport.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"

namespace kx {
namespace {

using test::ExpectXY;
using test::FunctionFixture;
using test::ReadXY;

struct TIncrementalCase {
  TKXChartFunctionPeriod Period;
  double PeriodValue;
  TKXChartFunctionType Type;
  // Whether an append recalculates the last periods only (the period size stands).
  bool Covered = true;
};

class Incremental : public FunctionFixture,
                    public testing::WithParamInterface<TIncrementalCase> {
protected:
  void SetUp() override {
    FunctionFixture::SetUp();
    Full = New<TKXLineChart>(Form.get());
    Rebuilding = New<TKXChartFunction>(Form.get());
    for (TKXChartFunction* F : {Function, Rebuilding}) {
      F->SetFunctionType(GetParam().Type);
      F->SetPeriod(GetParam().Period);
      F->SetPeriodValue(GetParam().PeriodValue);
      F->SetSourceChart(Source);
    }
    Function->SetIncremental(true);
    Function->SetTargetChart(Target);
    Rebuilding->SetTargetChart(Full);
  }
  TKXLineChart* Full = nullptr;
  TKXChartFunction* Rebuilding = nullptr;
};

TEST_P(Incremental, EqualsAWholeRebuildAfterEveryRandomChange) {
  std::mt19937 Random(20240611 + GetParam().Period * 31 + GetParam().Type);
  std::uniform_real_distribution<double> Y(-50, 50);
  std::uniform_real_distribution<double> Step(0.05, 0.9); // days: several values a day
  double X = EncodeDate(2023, 12, 20);
  for (int I = 0; I < 40; ++I)
    Source->Values()->Add(X += Step(Random), Y(Random));
  for (int Round = 0; Round < 300; ++Round) {
    TKX2DChartValues* V = Source->Values();
    const int32_t N = V->Count();
    const int32_t Any = N > 0 ? static_cast<int32_t>(Random() % N) : 0;
    switch (Random() % 11) {
    case 0: // a new Y somewhere
      if (N > 0) V->Items(Any)->SetValue(1, Y(Random));
      break;
    case 1: // the last value goes
      if (N > 0) V->Delete(N - 1);
      break;
    case 2: // a value in the middle goes
      if (N > 0) V->Delete(Any);
      break;
    case 3: { // a batch in the chart's bracket: a change and two appends
      Source->BeginUpdate();
      if (N > 0) V->Items(Any)->SetValue(1, Y(Random));
      V->Add(X += Step(Random), Y(Random));
      V->Add(X += Step(Random), Y(Random));
      Source->EndUpdate();
      break;
    }
    case 4: // the first value goes
      if (N > 0) V->Delete(0);
      break;
    case 5: // a value moves: the sorted source puts it in its place
      if (N > 1) V->Items(Any)->SetX(V->Items(0)->X() + (X - V->Items(0)->X()) * Step(Random));
      break;
    default: // an append, the common case
      V->Add(X += Step(Random), Y(Random));
      break;
    }
    ASSERT_NO_FATAL_FAILURE(ExpectXY(ReadXY(Target), ReadXY(Full), 1e-6)) << "round " << Round;
  }
}

TEST_P(Incremental, AnAppendKeepsTheTargetValuesOfEarlierPeriodsWhereCovered) {
  for (int I = 0; I < 200; ++I)
    Source->Values()->Add(EncodeDate(2024, 1, 1) + I * 0.3, I);
  const int32_t FirstID = Target->Values()->Items(0)->ID();
  Source->Values()->Add(EncodeDate(2024, 1, 1) + 200 * 0.3, 200);
  EXPECT_EQ(Target->Values()->Items(0)->ID() == FirstID, GetParam().Covered);
  ExpectXY(ReadXY(Target), ReadXY(Full), 1e-6);
}

// Runs added in bulk wait unmade in the source; both targets must still come out as for the
// same numbers added one at a time, run after run.
TEST_P(Incremental, BulkRunsGiveWhatAddingOneByOneGives) {
  auto* Twin = New<TKXLineChart>(Form.get());
  auto* TwinTarget = New<TKXLineChart>(Form.get());
  auto* TwinFunction = New<TKXChartFunction>(Form.get());
  TwinFunction->SetFunctionType(GetParam().Type);
  TwinFunction->SetPeriod(GetParam().Period);
  TwinFunction->SetPeriodValue(GetParam().PeriodValue);
  TwinFunction->SetSourceChart(Twin);
  TwinFunction->SetTargetChart(TwinTarget);
  double X = EncodeDate(2024, 1, 1);
  for (int Run = 0; Run < 3; ++Run) {
    std::vector<double> Xs, Ys;
    for (int I = 0; I < 25; ++I) {
      Xs.push_back(X += 0.3);
      Ys.push_back(std::sin(X) * 10);
    }
    Source->Values()->AddValues(Xs, Ys);
    for (size_t I = 0; I < Xs.size(); ++I)
      Twin->Values()->Add(Xs[I], Ys[I]);
    SCOPED_TRACE(testing::Message() << "after run " << Run);
    ExpectXY(ReadXY(Target), ReadXY(TwinTarget), 1e-6);
    ExpectXY(ReadXY(Full), ReadXY(TwinTarget), 1e-6);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Periods, Incremental,
    testing::Values(TIncrementalCase{fpEachValue, 1, cfSum},
                    TIncrementalCase{fpValueCount, 4, cfAverage},
                    TIncrementalCase{fpValueCount, 2.5, cfMedian},
                    TIncrementalCase{fpAxisRange, 1.5, cfMaximum},
                    TIncrementalCase{fpDay, 1, cfStdDev},
                    TIncrementalCase{fpWeek, 1, cfCopy},
                    TIncrementalCase{fpMonth, 1, cfMinimum},
                    TIncrementalCase{fpHour, 1, cfTotalVariance},
                    // Covered only while the period size stands: rebuilt whole otherwise.
                    TIncrementalCase{fpPercentValues, 0.1, cfSum, false},
                    TIncrementalCase{fpPercentRange, 0.2, cfNorm, false},
                    TIncrementalCase{fpAll, 1, cfVariance, false}),
    [](const auto& Info) {
      return GetEnumName(Info.param.Period) + "_" + GetEnumName(Info.param.Type);
    });

TEST_F(FunctionFixture, AnIncrementalTargetChangedByOthersIsRebuiltWhole) {
  FillRamp(10);
  Function->SetIncremental(true);
  Wire(cfSum, fpValueCount, 3);
  Target->Values()->Items(0)->SetValue(1, 1000);
  Source->Values()->Add(10, 11);
  ExpectXY(ReadXY(Target), {{1, 6}, {4, 15}, {7, 24}, {9.5, 21}});
}

} // namespace
} // namespace kx

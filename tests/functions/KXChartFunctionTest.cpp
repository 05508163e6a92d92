// The frame of a chart function: wiring to its charts, when it recalculates, what its
// setters store, and what it keeps when read back from a form.
#include <string>
#include <vector>

#include "KXFunctionsTestSupport.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {
namespace {

using test::ExpectXY;
using test::FunctionFixture;
using test::ReadXY;

// Counts the calculations through the events around them.
struct TRunCounter {
  int Executing = 0, Executed = 0;
  void Watch(TKXChartFunction* F) {
    F->SetOnExecutingFunction([this](TObject*) { ++Executing; });
    F->SetOnExecutedFunction([this](TObject*) { ++Executed; });
  }
};

TEST_F(FunctionFixture, FollowsEveryValueChangeOfItsSource) {
  FillRamp(3);
  Wire(cfSum, fpAll, 1);
  ExpectXY(ReadXY(Target), {{1, 6}});
  Source->Values()->Add(3, 10);
  ExpectXY(ReadXY(Target), {{1.5, 16}});
  Source->Values()->Items(0)->SetValue(1, 101);
  ExpectXY(ReadXY(Target), {{1.5, 116}});
  EXPECT_FALSE(Function->IsModified());
  Source->Values()->Clear();
  EXPECT_EQ(Target->Values()->Count(), 0);
}

TEST_F(FunctionFixture, RefusesOneChartAsSourceAndTargetAndChangesNothing) {
  FillRamp(3);
  Wire(cfSum, fpAll, 1);
  EXPECT_EQ(test::MessageOf<EKXChartException>([&] { Function->SetSourceChart(Target); }),
            SSourceTargetChartEqual);
  EXPECT_THROW(Function->SetTargetChart(Source), EKXChartException);
  EXPECT_EQ(Function->SourceChart(), Source);
  EXPECT_EQ(Function->TargetChart(), Target);
  EXPECT_EQ(Target->Listeners()->Count(), 0);
  Source->Values()->Add(3, 4);
  ExpectXY(ReadXY(Target), {{1.5, 10}});
}

TEST_F(FunctionFixture, WithoutATargetNothingHappensAndTheFunctionStaysModified) {
  FillRamp(3);
  Function->SetSourceChart(Source);
  Function->PerformFunction();
  EXPECT_TRUE(Function->IsModified());
}

TEST_F(FunctionFixture, AFreedSourceIsLetGoAndTheTargetKeepsItsValues) {
  FillRamp(3);
  Wire(cfSum, fpAll, 1);
  Source->Free();
  EXPECT_EQ(Function->SourceChart(), nullptr);
  ExpectXY(ReadXY(Target), {{1, 6}});
  Target->Free();
  EXPECT_EQ(Function->TargetChart(), nullptr);
}

TEST_F(FunctionFixture, AFreedFunctionLeavesItsSourcesListeners) {
  FillRamp(3);
  Wire(cfSum, fpAll, 1);
  Function->Free();
  EXPECT_EQ(Source->Listeners()->Count(), 0);
  Source->Values()->Add(3, 4); // nobody to tell: no dangling listener or observer
  EXPECT_EQ(Target->Values()->Count(), 1);
}

TEST_F(FunctionFixture, SettersClampAsTheyStore) {
  Source->Values()->Add(1, 1);
  Function->SetSourceChart(Source);
  for (double Bad : {0.0, -3.0, test::NaN}) {
    Function->SetPeriodValue(5);
    Function->SetPeriodValue(Bad);
    EXPECT_EQ(Function->PeriodValue(), 0.1) << Bad;
  }
  Function->SetSourceDim(5);
  EXPECT_EQ(Function->SourceDim(), 1);
  Function->SetSourceDim(-7);
  EXPECT_EQ(Function->SourceDim(), -1);
  // A source with fewer dimensions lowers the one already set.
  Function->SetSourceChart(nullptr);
  Function->SetSourceDim(4);
  auto* OneDim = New<TKXChart>(Form.get());
  Function->SetSourceChart(OneDim);
  EXPECT_EQ(Function->SourceDim(), 0);
}

TEST_F(FunctionFixture, WhileDisabledChangesOnlyMarkTheFunctionModified) {
  FillRamp(3);
  Wire(cfSum, fpAll, 1);
  TRunCounter Runs;
  Runs.Watch(Function);
  Function->SetEnabled(false);
  Source->Values()->Add(3, 4);
  EXPECT_TRUE(Function->IsModified());
  ExpectXY(ReadXY(Target), {{1, 6}});
  // A setter too: the target no longer shows what the settings ask for.
  Function->SetEnabled(true);
  Function->SetEnabled(false);
  EXPECT_FALSE(Function->IsModified());
  Function->SetFunctionType(cfMaximum);
  EXPECT_TRUE(Function->IsModified());
  EXPECT_EQ(Runs.Executed, 1);
  Function->SetEnabled(true);
  ExpectXY(ReadXY(Target), {{1.5, 4}});
  EXPECT_EQ(Runs.Executed, 2);
}

TEST_F(FunctionFixture, BatchesOfTheSourceEndInOneCalculation) {
  FillRamp(3);
  Wire(cfSum, fpAll, 1);
  TRunCounter Runs;
  Runs.Watch(Function);
  // The chart's own bracket: its listeners hear one ChartChanged at the end.
  Source->BeginUpdate();
  for (int I = 3; I < 6; ++I)
    Source->Values()->Add(I, 1);
  Source->EndUpdate();
  EXPECT_EQ(Runs.Executed, 1);
  ExpectXY(ReadXY(Target), {{2.5, 9}});
  // The listeners' bracket ends in one PanelChange.
  Source->Listeners()->BeginUpdate();
  Source->Values()->Add(6, 1);
  Source->Values()->Add(7, 1);
  Source->Listeners()->EndUpdate();
  EXPECT_EQ(Runs.Executed, 2);
  ExpectXY(ReadXY(Target), {{3.5, 11}});
  // A chart property, or a batch without a change of values, recalculates nothing.
  Source->SetCaption("renamed");
  Source->BeginUpdate();
  Source->EndUpdate();
  EXPECT_EQ(Runs.Executed, 2);
  EXPECT_EQ(Runs.Executing, Runs.Executed);
}

TEST_F(FunctionFixture, AnEmptySourceRaisesNoEventsAndEmptiesTheTarget) {
  Target->Values()->Add(1, 1);
  TRunCounter Runs;
  Runs.Watch(Function);
  Wire(cfSum, fpAll, 1);
  EXPECT_EQ(Target->Values()->Count(), 0);
  EXPECT_EQ(Runs.Executing, 0);
}

TEST_F(FunctionFixture, ACustomFunctionRunsOncePerPeriod) {
  FillRamp(7);
  std::vector<std::pair<int32_t, int32_t>> Calls;
  Function->SetOnCustomFunction([&](TKXCustomChart*, TKXCustomChart*, int32_t Low, int32_t High,
                                    TDateTime, int32_t, int32_t) { Calls.emplace_back(Low, High); });
  Wire(cfCustom, fpValueCount, 3);
  EXPECT_EQ(Calls, (std::vector<std::pair<int32_t, int32_t>>{{0, 2}, {3, 5}, {6, 6}}));
}

TEST_F(FunctionFixture, ACalculationThatRaisesClosesTheTargetsBracket) {
  FillRamp(3);
  Function->SetOnCustomFunction(
      [](TKXCustomChart*, TKXCustomChart* T, int32_t, int32_t, TDateTime, int32_t, int32_t) {
        T->Values()->Add({0.0, 0.0});
        throw Exception("boom");
      });
  Function->SetFunctionType(cfCustom);
  Function->SetPeriod(fpEachValue);
  Function->SetSourceChart(Source);
  EXPECT_THROW(Function->SetTargetChart(Target), Exception);
  EXPECT_EQ(Target->Values()->UpdateCount(), 0);
  EXPECT_TRUE(Function->IsModified());
  // The next change calculates again, from scratch.
  Function->SetOnCustomFunction(nullptr);
  Function->SetFunctionType(cfSum);
  ExpectXY(ReadXY(Target), {{0, 1}, {1, 2}, {2, 3}});
}

TEST_F(FunctionFixture, FunctionsFeedingEachOtherInARingDoNotRecalculateForEver) {
  FillRamp(3);
  Wire(cfSum, fpEachValue, 1);
  auto* Back = New<TKXChartFunction>(Form.get());
  Back->SetFunctionType(cfSum);
  Back->SetPeriod(fpEachValue);
  Back->SetSourceChart(Target);
  Back->SetTargetChart(Source);
  // The ring rebuilds the source within the add, so the value added is gone by its end: the
  // plain Add, which hands the pointer back without looking at it.
  static_cast<TKXChartValues*>(Source->Values())->Add({3.0, 4.0});
  EXPECT_EQ(Source->Values()->Count(), 4);
  EXPECT_EQ(Source->Values()->Count(), Target->Values()->Count());
}

TEST_F(FunctionFixture, AFormReadBackKeepsComputing) {
  FillRamp(3);
  Function->SetIncremental(true);
  Wire(cfAverage, fpValueCount, 2);
  const std::string Json = SaveFormToString(Form.get());
  EXPECT_NE(Json.find("\"PeriodValue\""), std::string::npos);
  TOwned<test::TFunctionsForm> Copy(New<test::TFunctionsForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  auto* F = static_cast<TKXChartFunction*>(Copy->FindComponent("Function"));
  auto* S = static_cast<TKXLineChart*>(Copy->FindComponent("Source"));
  auto* T = static_cast<TKXLineChart*>(Copy->FindComponent("Target"));
  ASSERT_TRUE(F && S && T);
  EXPECT_EQ(F->SourceChart(), S);
  EXPECT_EQ(F->TargetChart(), T);
  EXPECT_EQ(F->Period(), fpValueCount);
  EXPECT_EQ(F->FunctionType(), cfAverage);
  EXPECT_TRUE(F->Incremental());
  ExpectXY(ReadXY(T), {{0.5, 1.5}, {2, 3}});
  S->Values()->Add(3, 4);
  ExpectXY(ReadXY(T), {{0.5, 1.5}, {2.5, 3.5}});
}

TEST_F(FunctionFixture, ANewFunctionWritesItsPeriodValueAndNoOtherDefault) {
  const std::string Json = SaveFormToString(Form.get());
  EXPECT_NE(Json.find("\"PeriodValue\": 0.1"), std::string::npos) << Json;
  for (const char* Name : {"\"Enabled\"", "\"FunctionType\"", "\"Period\"", "\"Incremental\""})
    EXPECT_EQ(Json.find(Name), std::string::npos) << Name;
}

} // namespace
} // namespace kx

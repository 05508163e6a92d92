// The observers of a value collection: told by index of every change of numbers or places,
// also inside the brackets that silence the chart's road.
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KXCoreTestSupport.h"
#include "kxcharts/core/KXChartValues.h"

namespace kx {
namespace {

struct TIndexLog : IChartValuesObserver {
  std::vector<int32_t> Indexes;
  void ValuesChanged(TKXChartValues*, int32_t Index) override { Indexes.push_back(Index); }
};

struct TObserverCase {
  const char* Name;
  bool Sorted;
  std::function<void(TKXChartValues*)> Change;
  // The lowest index told: where the values began to differ.
  int32_t Lowest;
};

class ChartValuesObserver : public testing::TestWithParam<TObserverCase> {};

TEST_P(ChartValuesObserver, HearsWhereTheValuesBeganToDifferAlsoInsideABracket) {
  TOwned<TKXChartValues> V(New<test::TXYValues>(nullptr, ClassOf<TKXChartValue>()));
  V->SetSorted(GetParam().Sorted);
  for (double X : {0, 10, 20, 30, 40})
    V->Add({X, X});
  TIndexLog Log;
  V->AddObserver(&Log);
  V->AddObserver(&Log); // once only
  V->BeginUpdate();
  GetParam().Change(V.get());
  V->EndUpdate();
  ASSERT_FALSE(Log.Indexes.empty());
  EXPECT_EQ(*std::min_element(Log.Indexes.begin(), Log.Indexes.end()), GetParam().Lowest);
  V->RemoveObserver(&Log);
  Log.Indexes.clear();
  V->Items(0)->SetValue(1, 5);
  EXPECT_TRUE(Log.Indexes.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Changes, ChartValuesObserver,
    testing::Values(
        TObserverCase{"ANumber", false, [](TKXChartValues* V) { V->Items(3)->SetValue(1, 7); }, 3},
        TObserverCase{"AnAppend", false, [](TKXChartValues* V) { V->Add({50, 1}); }, 5},
        TObserverCase{"ADeleteInTheMiddle", false, [](TKXChartValues* V) { V->Delete(2); }, 2},
        TObserverCase{"ASortedMoveFromTheEnd", true,
                      [](TKXChartValues* V) { V->Items(4)->SetValue(0, 15); }, 2},
        TObserverCase{"ACopyOfAnotherValue", false,
                      [](TKXChartValues* V) { V->Items(3)->Assign(V->Items(1)); }, 3},
        TObserverCase{"TheDateDimensions", false, [](TKXChartValues* V) { V->SetIsDateTime(true); },
                      0},
        TObserverCase{"ALimitDroppingTheOldest", false,
                      [](TKXChartValues* V) {
                        V->SetLimit(5);
                        V->Add({50, 1});
                      },
                      0}),
    [](const auto& Info) { return std::string(Info.param.Name); });

} // namespace
} // namespace kx

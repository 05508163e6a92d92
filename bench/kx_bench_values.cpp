// Chart values under the load of big and live data: bulk adding, a time series into a
// sorted collection, a sliding window kept by Limit, and the whole change road of one
// number. bytes_per_value is the heap that one value costs (object, numbers, its share
// of the collection's slot array, allocator overhead included), read from the allocator.

#include <malloc.h>

#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include "KXBenchSupport.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"

namespace {

using namespace kx;
using kx::bench::TBenchForm;

// X in dimension 0, Y in dimension 1, as the two-dimensional charts have them.
class TXYBenchValues : public TKXChartValues {
  KX_CLASS(TXYBenchValues, TKXChartValues)

public:
  TXYBenchValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass)
      : TKXChartValues(AOwner, ValueClass) {
    FNumDimensions = 2;
    FDefaultDimension = 1;
  }
};

class TXYBenchChart : public TKXChart {
  KX_CLASS(TXYBenchChart, TKXChart)

public:
  using TKXChart::TKXChart;

protected:
  TOwned<TKXChartValues> CreateChartValues() override {
    return MakeOwned<TXYBenchValues>(this, ClassOf<TKXChartValue>());
  }
};

// Bytes the allocator hands out now, small blocks and mapped ones alike, with their
// headers.
size_t HeapInUse() {
  const struct mallinfo2 M = mallinfo2();
  return M.uordblks + M.hblkhd;
}

class TNullListener : public IChartPanelListener {
public:
  int64_t Calls = 0;
  void PanelChange() override { ++Calls; }
  void ChartAdded(TKXCustomChart*) override { ++Calls; }
  void ChartDeleted(TKXCustomChart*) override { ++Calls; }
  void ChartChanged(TKXCustomChart*) override { ++Calls; }
  void ValueChanged(TKXCustomChart*, TKXChartValue*) override { ++Calls; }
  void SelectionChanged(TObject*) override { ++Calls; }
  void VisibleChanged(TObject*) override { ++Calls; }
};

enum class TAddKind { Unsorted, SortedAscending, WithLimit };

// Times Add(Values) on the values of a fresh chart that Make puts on a form, and reports
// the heap that each value took and the time per value.
template <class TMake, class TAdd>
void TimeAdds(benchmark::State& State, int64_t N, TMake Make, TAdd Add) {
  double BytesPerValue = 0;
  for (auto _ : State) {
    State.PauseTiming();
    TOwned<TBenchForm> Form(New<TBenchForm>(nullptr));
    auto* Values = Make(Form.get());
    malloc_trim(0);
    const size_t Before = HeapInUse();
    State.ResumeTiming();

    Add(Values);

    State.PauseTiming();
    BytesPerValue = static_cast<double>(HeapInUse() - Before) / Values->Count();
    benchmark::DoNotOptimize(Values->MaxValue(1));
    Form.reset();
    State.ResumeTiming();
  }
  State.SetItemsProcessed(State.iterations() * N);
  State.counters["bytes_per_value"] = BytesPerValue;
  State.counters["ns_per_value"] =
      benchmark::Counter(static_cast<double>(State.iterations() * N),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void RunAdds(benchmark::State& State, TAddKind Kind) {
  const auto N = static_cast<int32_t>(State.range(0));
  const auto Make = [Kind](TBenchForm* Form) {
    TKXChartValues* Values = New<TXYBenchChart>(Form)->Values();
    if (Kind == TAddKind::SortedAscending) {
      Values->SetSorted(true);
      Values->SetSortByDimension(0);
    }
    if (Kind == TAddKind::WithLimit) Values->SetLimit(100000);
    return Values;
  };
  TimeAdds(State, N, Make, [N](TKXChartValues* Values) {
    Values->BeginUpdate();
    for (int32_t I = 0; I < N; ++I) {
      const double XY[2] = {static_cast<double>(I), static_cast<double>(I % 97)};
      Values->Add(std::span<const double>(XY, 2));
    }
    Values->EndUpdate();
  });
}

void BM_AddUnsorted(benchmark::State& State) {
  RunAdds(State, TAddKind::Unsorted);
}
BENCHMARK(BM_AddUnsorted)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_AddSortedAscending(benchmark::State& State) {
  RunAdds(State, TAddKind::SortedAscending);
}
BENCHMARK(BM_AddSortedAscending)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_AddWithLimit(benchmark::State& State) {
  RunAdds(State, TAddKind::WithLimit);
}
BENCHMARK(BM_AddWithLimit)->Arg(1000000)->Unit(benchmark::kMillisecond);

// A line chart's values (sorted on X) from two spans in one call, as a loader of a big
// series hands them over. Per value against BM_AddUnsorted, which adds one value at a time.
void BM_AddSpan(benchmark::State& State) {
  const auto N = static_cast<int32_t>(State.range(0));
  std::vector<double> X(static_cast<size_t>(N)), Y(static_cast<size_t>(N));
  for (int32_t I = 0; I < N; ++I) {
    X[static_cast<size_t>(I)] = I;
    Y[static_cast<size_t>(I)] = I % 97;
  }
  TimeAdds(
      State, N, [](TBenchForm* Form) { return New<TKXLineChart>(Form)->Values(); },
      [&](TKX2DChartValues* Values) { Values->AddValues(X, Y); });
}
BENCHMARK(BM_AddSpan)->Arg(10000000)->Unit(benchmark::kMillisecond);

// One number of a value changes, outside any bracket, in a chart in a panel with one
// listener: listeners, panel, events, axes, the view range, and the panel's repaint mark.
void BM_SetValueNotify(benchmark::State& State) {
  const auto N = static_cast<int32_t>(State.range(0));
  TOwned<TBenchForm> Form(New<TBenchForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  auto* Chart = New<TXYBenchChart>(Form.get());
  Chart->SetPanel(Panel);
  TNullListener Listener;
  Chart->Listeners()->Add(&Listener);
  TKXChartValues* Values = Chart->Values();
  Values->BeginUpdate();
  for (int32_t I = 0; I < 1000; ++I)
    Values->Add({static_cast<double>(I), 0.0});
  Values->EndUpdate();
  double Y = 0;
  for (auto _ : State) {
    for (int32_t I = 0; I < N; ++I)
      Values->Items(I % 1000)->SetValue(1, Y += 1.0);
  }
  benchmark::DoNotOptimize(Listener.Calls);
  Chart->Listeners()->Clear();
  State.SetItemsProcessed(State.iterations() * N);
  State.counters["ns_per_change"] =
      benchmark::Counter(static_cast<double>(State.iterations() * N),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_SetValueNotify)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

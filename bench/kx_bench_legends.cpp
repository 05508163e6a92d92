// What the legend list costs to follow a chart: one value of a line of 10,000 values
// changes, and the list rebuilds its items (10,000 texts with their checks) as it does
// before its next paint. Beside it, for scale, a repaint of the panel that shows the line.
#include <benchmark/benchmark.h>

#include <cmath>

#include "KXBenchSupport.h"
#include "kxcharts/KXChartModules.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/legends/KXChartLegends.h"

namespace {

using namespace kx;
using kx::bench::TBenchForm;

struct TListBench {
  TOwned<TBenchForm> Form{New<TBenchForm>(nullptr)};
  TKXChartPanel* Panel = New<TKXChartPanel>(Form.get());
  TKXLineChart* Line = New<TKXLineChart>(Form.get());
  TKXLegendListBox* List = New<TKXLegendListBox>(Form.get());

  explicit TListBench(int64_t N) {
    StartChartModules();
    Panel->SetBounds(0, 0, 1200, 700);
    Line->SetPanel(Panel);
    {
      TUpdateScope<TKXChartValues> Scope(Line->TKXCustomChart::Values());
      for (int64_t I = 0; I < N; ++I)
        Line->Values()->Add(double(I), 50 + 40 * std::sin(I * 0.01));
    }
    List->SetBounds(0, 0, 200, 400);
    List->SetLegendTextStyle(ltsValue);
    List->SetPanel(Panel);
    List->RebuildLegend();
    Panel->Repaint();
  }
};

// One value changes in every round, then Then(Bench) runs.
template <class F> void TimeAChange(benchmark::State& State, F&& Then) {
  TListBench Bench(State.range(0));
  TKXChartValue* Value = Bench.Line->TKXCustomChart::Values()->Items(0);
  double Y = 0;
  for (auto _ : State) {
    Value->SetValue(1, Y += 1);
    Then(Bench);
  }
  if (Bench.List->Count() != State.range(0)) State.SkipWithError("the list lost values");
}

void BM_LegendListRebuild(benchmark::State& State) {
  TimeAChange(State, [](TListBench& B) { B.List->RebuildLegend(); });
}
BENCHMARK(BM_LegendListRebuild)->Arg(10000)->Unit(benchmark::kMicrosecond);

// The same change, then a repaint of the panel: what the rebuild is measured against.
void BM_LegendListPanelRepaint(benchmark::State& State) {
  TimeAChange(State, [](TListBench& B) {
    B.Panel->Repaint();
    cairo_surface_flush(B.Panel->Bitmap()->Surface());
  });
}
BENCHMARK(BM_LegendListPanelRepaint)->Arg(10000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();

// What laying out and painting a node graph costs: BM_ArrangeGraph/N runs Arrange and one
// paint of a 1600 x 900 panel holding a TKXGraphChart of N nodes on levels of 100 nodes
// each, with two links per node (2 N links: each node to two nodes of the next level, the
// nodes of the last level's share going from the first level to random deeper nodes).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "KXBenchSupport.h"
#include "kxcharts/charts/graphs/KXGraphCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace {

using namespace kx;
using kx::bench::TBenchForm;

constexpr int32_t Width = 1600, Height = 900, PerLevel = 100;

struct TGraphBench {
  TOwned<TBenchForm> Form{New<TBenchForm>(nullptr)};
  TKXChartPanel* Panel = New<TKXChartPanel>(Form.get());
  TKXGraphChart* Chart = New<TKXGraphChart>(Form.get());

  explicit TGraphBench(int32_t N) {
    Panel->SetBounds(0, 0, Width, Height);
    Panel->ChartShadow()->SetVisible(false);
    Chart->SetOptions(Chart->Options() - coValueLabels);
    Chart->SetPanel(Panel);
    TKXGraphChartValues* Nodes = Chart->Values();
    std::mt19937 Random{20240601};
    std::vector<TKXGraphChartValue*> Made;
    Made.reserve(static_cast<size_t>(N));
    Nodes->BeginUpdate();
    Nodes->SetSorted(false);
    for (int32_t I = 0; I < N; ++I) {
      TKXGraphChartValue* V = Nodes->Add(0.0, 0.0);
      V->SetLevel(I / PerLevel);
      Made.push_back(V);
    }
    const int32_t Levels = (N + PerLevel - 1) / PerLevel;
    const auto Link = [](TKXGraphChartValue* From, TKXGraphChartValue* To) {
      From->Links()->Add()->SetValue(To);
    };
    int32_t Spare = 0;
    for (int32_t I = 0; I < N; ++I) {
      const int32_t Level = I / PerLevel;
      if (Level + 1 >= Levels) {
        Spare += 2;
        continue;
      }
      const int32_t Next = (Level + 1) * PerLevel;
      const int32_t Row = std::min(PerLevel, N - Next);
      Link(Made[I], Made[Next + (I % PerLevel) % Row]);
      Link(Made[I], Made[Next + (I % PerLevel + 1) % Row]);
    }
    std::uniform_int_distribution<int32_t> Deeper{std::min(PerLevel, N - 1), N - 1};
    for (int32_t K = 0; K < Spare; ++K)
      Link(Made[K % std::min(PerLevel, N)], Made[Deeper(Random)]);
    Nodes->SetSorted(true);
    Nodes->EndUpdate();
  }

  void ArrangeAndPaint() {
    Chart->Arrange();
    Panel->Repaint();
    cairo_surface_flush(Panel->Bitmap()->Surface());
  }
};

void BM_ArrangeGraph(benchmark::State& State) {
  const auto N = static_cast<int32_t>(State.range(0));
  TGraphBench Bench(N);
  Bench.ArrangeAndPaint(); // the first paint finds the ranges
  for (auto _ : State)
    Bench.ArrangeAndPaint();
  State.SetItemsProcessed(State.iterations() * N);
}

} // namespace

BENCHMARK(BM_ArrangeGraph)->Arg(1000)->Arg(10000)->Arg(40000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();

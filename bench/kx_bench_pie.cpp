// What a full paint of a pie costs: a TKXPieChart with its value labels in a default
// 1600 x 900 panel (its ChartShadow hidden, as in BM_PaintLine), over N values of a random
// size, each with a caption, the whole panel painted:
//   ./kx bench 'BM_PaintPie/1000$'
#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "KXBenchSupport.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace {

using namespace kx;
using kx::bench::TBenchForm;

constexpr int32_t Width = 1600, Height = 900;

void BM_PaintPie(benchmark::State& State) {
  TOwned<TBenchForm> Form(New<TBenchForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  auto* Chart = New<TKXPieChart>(Form.get());
  Panel->SetBounds(0, 0, Width, Height);
  Panel->ChartShadow()->SetVisible(false);
  Chart->SetPanel(Panel);
  std::mt19937 Random{20240601};
  std::uniform_real_distribution<double> Size{1.0, 10.0};
  {
    TUpdateScope<TKXChartValues> Scope(Chart->TKXCustomChart::Values());
    for (int64_t I = 0; I < State.range(0); ++I)
      Chart->Values()->Add(Size(Random), "Slice " + std::to_string(I));
  }
  const auto Paint = [&] {
    Panel->Repaint();
    cairo_surface_flush(Panel->Bitmap()->Surface());
  };
  Paint();
  for (auto _ : State)
    Paint();
  State.SetItemsProcessed(State.iterations() * State.range(0));
}

} // namespace

BENCHMARK(BM_PaintPie)->Arg(1000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();

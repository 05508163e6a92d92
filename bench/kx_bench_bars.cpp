// What a full paint of a bar chart costs: a TKXBarChart in a default 1600 x 900 panel with
// BM_PaintLine's settings (its ChartShadow hidden, Options without value colours and
// labels), over N bars of a random walk, the whole panel painted. At 100,000 bars on about
// 1,500 pixel columns every bar is narrower than a pixel; compare with
// BM_PaintLine/100000 (kx_bench_line) in the same run:
//   ./kx bench 'BM_Paint(Bars|Line)/100000$'
// BM_PaintCandles is the same for a TKXCandleStickChart over N daily candles of the walk
// (open at the last close), in its default style, body and wicks; its goal is at most twice
// BM_PaintBars at 100,000:
//   ./kx bench 'BM_Paint(Bars|Candles)/100000$'
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "KXBenchSupport.h"
#include "kxcharts/charts/bars/KXBarCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace {

using namespace kx;
using kx::bench::TBenchForm;

constexpr int32_t Width = 1600, Height = 900;

// A chart of class T alone in a default panel with BM_PaintLine's settings, filled by
// Fill(Chart, Step, Random) and painted whole in each iteration.
template <class T, class F> void PaintChart(benchmark::State& State, F Fill) {
  TOwned<TBenchForm> Form(New<TBenchForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  auto* Chart = New<T>(Form.get());
  Panel->SetBounds(0, 0, Width, Height);
  Panel->ChartShadow()->SetVisible(false);
  Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
  Chart->SetPanel(Panel);
  std::mt19937 Random{20240601};
  std::normal_distribution<double> Step{0.0, 1.0};
  {
    TUpdateScope<TKXChartValues> Scope(Chart->TKXCustomChart::Values());
    Fill(Chart, Step, Random);
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

void BM_PaintBars(benchmark::State& State) {
  PaintChart<TKXBarChart>(State, [&](TKXBarChart* Chart, auto& Step, auto& Random) {
    double Y = 0;
    for (int64_t I = 0; I < State.range(0); ++I)
      Chart->Values()->Add(Y += Step(Random), "");
  });
}

void BM_PaintCandles(benchmark::State& State) {
  PaintChart<TKXCandleStickChart>(State, [&](TKXCandleStickChart* Chart, auto& Step,
                                             auto& Random) {
    double Close = 0;
    for (int64_t I = 0; I < State.range(0); ++I) {
      const double Open = Close;
      Close += Step(Random);
      const double Reach = std::fabs(Step(Random));
      Chart->Values()->Add(double(I), Open, Close, std::max(Open, Close) + Reach,
                           std::min(Open, Close) - Reach, "");
    }
  });
}

} // namespace

BENCHMARK(BM_PaintBars)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PaintCandles)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();

// What a full paint of a point chart costs: a TKXPointChart in a default 1600 x 900 panel
// (its ChartShadow hidden, Options without value colours and labels, as BM_PaintLine has
// them), one point style (the rectangle), fixed 3-pixel points, the whole panel painted.
// BM_PaintPoints/N takes the random walk of BM_PaintLine (kx_bench_line) in the order of its
// X; the /random form takes N points spread evenly over the plot. Run both programs in one
// go to compare: ./kx bench 'BM_Paint(Line|Points)/1000000'.
#include <benchmark/benchmark.h>

#include <random>

#include "KXBenchSupport.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace {

using namespace kx;
using kx::bench::TBenchForm;

constexpr int32_t Width = 1600, Height = 900;

struct TPointsBench {
  TOwned<TBenchForm> Form{New<TBenchForm>(nullptr)};
  TKXChartPanel* Panel = New<TKXChartPanel>(Form.get());
  TKXPointChart* Chart = New<TKXPointChart>(Form.get());

  TPointsBench(int64_t N, bool Walk) {
    Panel->SetBounds(0, 0, Width, Height);
    Panel->ChartShadow()->SetVisible(false);
    Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
    Chart->SetFixedSizePoints(true);
    Chart->PointsInfo()->SetWidth(3);
    Chart->PointsInfo()->SetHeight(3);
    Chart->SetPanel(Panel);
    // The same seed and steps as BM_PaintLine's walk.
    std::mt19937 Random{20240601};
    std::normal_distribution<double> Step{0.0, 1.0};
    std::uniform_real_distribution<double> Anywhere{0.0, 1000.0};
    double Y = 0;
    Chart->Values()->BeginUpdate();
    for (int64_t I = 0; I < N; ++I) {
      if (Walk)
        Chart->Values()->Add(static_cast<double>(I), Y += Step(Random));
      else
        Chart->Values()->Add(Anywhere(Random), Anywhere(Random));
    }
    Chart->Values()->EndUpdate();
  }

  void Paint() {
    Panel->Repaint();
    cairo_surface_flush(Panel->Bitmap()->Surface());
  }
};

void RunPaint(benchmark::State& State, int64_t N, bool Walk) {
  TPointsBench Bench(N, Walk);
  Bench.Paint(); // the first paint finds the ranges and builds the summary
  for (auto _ : State)
    Bench.Paint();
  State.SetItemsProcessed(State.iterations() * N);
}

void BM_PaintPoints(benchmark::State& State) {
  RunPaint(State, State.range(0), true);
}

// Uniform random points: as many as the walk, but hardly two on one pixel.
benchmark::internal::Benchmark* const RandomPoints = benchmark::RegisterBenchmark(
    "BM_PaintPoints/1000000/random",
    [](benchmark::State& State) { RunPaint(State, 1000000, false); });

} // namespace

BENCHMARK(BM_PaintPoints)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  RandomPoints->Unit(benchmark::kMillisecond);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

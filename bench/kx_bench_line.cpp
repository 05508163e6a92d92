// What a full paint of a line chart costs: a TKXLineChart alone on its own axes, painted
// into a 1600 x 900 bitmap, over N sorted values of a random walk. Compare with
// BM_PolylineCairoFloor (kx_bench_canvas), which strokes a walk of as many points straight
// through Cairo.
#include <benchmark/benchmark.h>

#include <random>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/toolkit/KXBitmap.h"

namespace {

using namespace kx;

class TBenchForm : public TComponent {
  KX_CLASS(TBenchForm, TComponent)

public:
  using TComponent::TComponent;
};

struct TLineBench {
  TOwned<TBenchForm> Form{New<TBenchForm>(nullptr)};
  TKXLineChart* Chart = New<TKXLineChart>(Form.get());
  TOwned<TBitmap> Bitmap = MakeOwned<TBitmap>();

  TLineBench(int64_t N, TChartOptions Options) {
    Chart->SetOptions(Options);
    Chart->SetBounds(0, 0, 1600, 900);
    std::mt19937 Random(20240601);
    std::normal_distribution<double> Step(0.0, 1.0);
    double Y = 0;
    Chart->Values()->BeginUpdate();
    for (int64_t I = 0; I < N; ++I) {
      Y += Step(Random);
      Chart->Values()->Add(static_cast<double>(I), Y);
    }
    Chart->Values()->EndUpdate();
    Chart->HorizontalAxis()->UpdateAxisValues();
    Chart->VerticalAxis()->UpdateAxisValues();
    Bitmap->SetSize(1600, 900);
  }

  void Paint() {
    TCanvas* Canvas = Bitmap->Canvas();
    Canvas->Brush()->SetColor(clWhite);
    Canvas->FillRect({0, 0, 1600, 900});
    Chart->Draw(Canvas, {0, 0, 1600, 900});
    cairo_surface_flush(Bitmap->Surface());
  }
};

void RunPaint(benchmark::State& State, TChartOptions Options) {
  TLineBench Bench(State.range(0), Options);
  for (auto _ : State)
    Bench.Paint();
  State.SetItemsProcessed(State.iterations() * State.range(0));
}

// Without value colours and labels: runs of one look are stroked together.
void BM_PaintLine(benchmark::State& State) {
  RunPaint(State, TChartOptions::FromBits(1939) - coValueColors - coValueLabels);
}

// The default options: every value its own colour, so every segment its own stroke.
void BM_PaintLineValueColors(benchmark::State& State) {
  RunPaint(State, TChartOptions::FromBits(1939));
}

} // namespace

BENCHMARK(BM_PaintLine)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PaintLineValueColors)->Arg(100000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();

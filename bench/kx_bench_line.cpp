// What a full paint of a line chart costs: a TKXLineChart in a default 1600 x 900 panel
// (its ChartShadow hidden but in BM_PaintLineShadow, Options without value colours and
// labels), over N sorted values of a random walk, the whole panel painted (frame, gradient,
// axes with their labels and grid, the line); and what the mouse costs over such a panel (a crosshair move, a pan step
// with its repaint). Compare with BM_PolylineCairoFloor (kx_bench_canvas), which strokes a
// walk of as many points straight through Cairo.
#include <benchmark/benchmark.h>

#include <random>

#include "KXBenchSupport.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/controls/KXControls.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace {

using namespace kx;
using kx::bench::TBenchForm;

constexpr int32_t Width = 1600, Height = 900;

struct TLineBench {
  TOwned<TBenchForm> Form{New<TBenchForm>(nullptr)};
  TKXChartPanel* Panel = New<TKXChartPanel>(Form.get());
  TKXLineChart* Chart = New<TKXLineChart>(Form.get());
  std::mt19937 Random{20240601};
  std::normal_distribution<double> Step{0.0, 1.0};
  double Y = 0;
  int64_t NextX = 0;

  TLineBench(int64_t N, TChartOptions Options, bool Shadow = false) {
    Panel->SetBounds(0, 0, Width, Height);
    Panel->ChartShadow()->SetVisible(Shadow);
    Chart->SetOptions(Options);
    Chart->SetPanel(Panel);
    Chart->Values()->BeginUpdate();
    Append(N);
    Chart->Values()->EndUpdate();
  }

  void Append(int64_t N) {
    for (int64_t I = 0; I < N; ++I)
      Chart->Values()->Add(static_cast<double>(NextX++), Y += Step(Random));
  }

  void Paint() {
    Panel->Repaint();
    cairo_surface_flush(Panel->Bitmap()->Surface());
  }

  // Zooms the X axis to Fraction of the values about the middle, and paints.
  void ZoomX(double Fraction) {
    const double N = static_cast<double>(NextX), Mid = N / 2, Half = N * Fraction / 2;
    TKXChartAxis* X = Chart->HorizontalAxis();
    X->SetZoomMinimum(Mid - Half);
    X->SetZoomMaximum(Mid + Half);
    Paint();
  }
};

void RunPaint(benchmark::State& State, TChartOptions Options, bool Shadow = false) {
  TLineBench Bench(State.range(0), Options, Shadow);
  Bench.Paint(); // the first paint builds the summary
  for (auto _ : State)
    Bench.Paint();
  State.SetItemsProcessed(State.iterations() * State.range(0));
}

const TChartOptions PlainOptions = TChartOptions::FromBits(1939) - coValueColors - coValueLabels;

// Without value colours and labels: runs of one look are drawn per pixel column.
void BM_PaintLine(benchmark::State& State) {
  RunPaint(State, PlainOptions);
}

// BM_PaintLine with the panel's ChartShadow visible, as a default panel has it: the shadow
// pass is reduced as the line is, so it should cost no more than the line itself.
//   ./kx bench 'BM_PaintLine(Shadow)?/10000000$'
void BM_PaintLineShadow(benchmark::State& State) {
  RunPaint(State, PlainOptions, true);
}

// The same chart zoomed to 0.1 % of its X range, about the middle. Its pen does not grow
// with the zoom here: coZoomPen would widen it by the zoom factor (to 2,000 px at 1000x), and
// the time would be Cairo stroking a pen wider than the plot, whatever the values. The
// WidePen form keeps coZoomPen to show that cost.
void RunZoomed(benchmark::State& State, TChartOptions Options) {
  TLineBench Bench(State.range(0), Options);
  Bench.Paint();
  Bench.ZoomX(0.001);
  for (auto _ : State)
    Bench.Paint();
  State.SetItemsProcessed(State.iterations() * State.range(0) / 1000);
}

void BM_PaintLineZoomed(benchmark::State& State) {
  RunZoomed(State, PlainOptions - coZoomPen);
}

void BM_PaintLineZoomedWidePen(benchmark::State& State) {
  RunZoomed(State, PlainOptions);
}

// The default options: every value its own colour, so every segment its own stroke.
void BM_PaintLineValueColors(benchmark::State& State) {
  RunPaint(State, TChartOptions::FromBits(1939));
}

// A live signal: Limit N, one value appended at a time, a repaint every 1000 appends. The
// time per iteration is per append, the paint and the summary's upkeep shared out.
void BM_AppendLive(benchmark::State& State) {
  TLineBench Bench(State.range(0), PlainOptions);
  Bench.Chart->Values()->SetLimit(static_cast<int32_t>(State.range(0)));
  Bench.Paint();
  int64_t Appended = 0;
  for (auto _ : State) {
    Bench.Append(1);
    if (++Appended % 1000 == 0) Bench.Paint();
  }
  State.SetItemsProcessed(State.iterations());
}

// The mouse over the plot: one move of the crosshair (the XOR lines erased and drawn again,
// and the hint with the axis values moved), between two points, over a painted panel. The
// panel must not need a paint afterwards: only the inverted lines change.
void BM_CrosshairMove(benchmark::State& State) {
  TLineBench Bench(State.range(0), PlainOptions);
  Bench.Paint();
  const TRect R = Bench.Panel->ChartRect();
  const int32_t Y = (R.Top + R.Bottom) / 2;
  int32_t X = R.Left + R.Width() / 3;
  for (auto _ : State) {
    X = X == R.Left + R.Width() / 3 ? R.Left + 2 * R.Width() / 3 : R.Left + R.Width() / 3;
    Bench.Panel->MouseMove({}, X, Y);
  }
  if (Bench.Panel->NeedsPaint() || !Bench.Panel->MouseTrackingOn())
    State.SkipWithError("a crosshair move asked for a paint");
}

// One step of an Alt-drag pan over the chart zoomed 10x along X (about the middle), and the
// repaint it asks for: BM_PaintLine's settings, coZoomPen off as in BM_PaintLineZoomed. The
// steps go 20 pixels back and forth, so the view stays inside the range.
void BM_PanRepaint(benchmark::State& State) {
  TLineBench Bench(State.range(0), PlainOptions - coZoomPen);
  Bench.Paint();
  Bench.ZoomX(0.1);
  const TRect R = Bench.Panel->ChartRect();
  const int32_t Y = (R.Top + R.Bottom) / 2, X0 = (R.Left + R.Right) / 2;
  Bench.Panel->MouseDown(mbLeft, {ssAlt, ssLeft}, X0, Y);
  if (Bench.Panel->UserAction() != uaxPan) State.SkipWithError("the drag did not start a pan");
  bool Right = false;
  for (auto _ : State) {
    Right = !Right;
    Bench.Panel->MouseMove({ssAlt, ssLeft}, Right ? X0 + 20 : X0, Y);
    Bench.Paint();
  }
  Bench.Panel->MouseUp(mbLeft, {ssAlt}, X0, Y);
  State.SetItemsProcessed(State.iterations() * State.range(0) / 10);
}

} // namespace

BENCHMARK(BM_CrosshairMove)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PanRepaint)->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PaintLine)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Arg(10000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PaintLineShadow)->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PaintLineZoomed)->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PaintLineZoomedWidePen)->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PaintLineValueColors)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AppendLive)->Arg(1000000)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();

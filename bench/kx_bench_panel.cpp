// What a whole paint of a chart panel costs at 1600 x 900: the frame, background, the
// gradient through its buffer, header, footer, axes and (in the second benchmark) a legend
// of ten charts. The first paint of a gradient fills the buffer; a repaint only copies it.
#include <benchmark/benchmark.h>

#include <string>

#include "KXBenchSupport.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace {

using namespace kx;
using kx::bench::TBenchForm;

struct TPanelBench {
  TOwned<TBenchForm> Form{New<TBenchForm>(nullptr)};
  TKXChartPanel* Panel = New<TKXChartPanel>(Form.get());

  TPanelBench() {
    Panel->SetBounds(0, 0, 1600, 900);
    // The starting gradient is visible; give it colours of its own so it is plainly there.
    Panel->Gradient()->SetStartColor(static_cast<TColor>(0xF0E0D0));
    Panel->Gradient()->SetEndColor(clWhite);
    Panel->Repaint();
  }

  void Paint() {
    Panel->Repaint();
    cairo_surface_flush(Panel->Bitmap()->Surface());
  }
};

// first: every paint finds the buffer freed by a change of the gradient, and fills it;
// repaint: every paint copies the buffer of the paint before.
void BM_PaintEmptyPanel(benchmark::State& State, bool First) {
  TPanelBench Bench;
  bool Odd = false;
  for (auto _ : State) {
    if (First) {
      Odd = !Odd;
      Bench.Panel->Gradient()->SetEndColor(Odd ? static_cast<TColor>(0xFEFEFE) : clWhite);
    }
    Bench.Paint();
  }
}
BENCHMARK_CAPTURE(BM_PaintEmptyPanel, first, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PaintEmptyPanel, repaint, false)->Unit(benchmark::kMillisecond);

// A repaint of the panel with a legend listing ten charts (the lines gathered once).
void BM_PaintPanelLegend(benchmark::State& State) {
  TPanelBench Bench;
  for (int I = 0; I < 10; ++I) {
    auto* Chart = New<TKXChart>(Bench.Form.get());
    Chart->SetCaption("Chart number " + std::to_string(I + 1));
    Chart->SetPanel(Bench.Panel);
  }
  Bench.Paint();
  if (Bench.Panel->Legend()->Lines()->Count() != 10)
    State.SkipWithError("the legend lists no ten charts");
  for (auto _ : State)
    Bench.Paint();
}
BENCHMARK(BM_PaintPanelLegend)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

// What one value costs on its way to a pixel: AxisToPixel on a plot rectangle of
// 1600 x 900, on each scale kind, over a sweep of values across (and a little beyond) the
// range. Every chart draws each of its values through this call.
#include <benchmark/benchmark.h>

#include <vector>

#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace {

using namespace kx;

struct TScaleSetup {
  TAxisOptions Options;
  TKXLogarithmicType Type;
  bool Cycles;
};

void BM_AxisToPixel(benchmark::State& State, TScaleSetup Setup) {
  TOwned<TKXChartAxis> Axis(New<TKXChartAxis>(nullptr));
  Axis->SetLocation(calBottom);
  Axis->SetMaximum(10000);
  Axis->SetMinimum(1);
  Axis->SetOptions(Setup.Options);
  Axis->SetLogarithmicType(Setup.Type);
  Axis->SetLogCycles(Setup.Cycles);
  const TRect Plot{40, 10, 1640, 910};
  std::vector<double> Values(4096);
  for (size_t I = 0; I < Values.size(); ++I)
    Values[I] = -500 + 11000.0 * double(I) / double(Values.size());
  size_t I = 0;
  for (auto _ : State) {
    benchmark::DoNotOptimize(Axis->AxisToPixel(Values[I], Plot));
    I = (I + 1) & (Values.size() - 1);
  }
  State.SetItemsProcessed(State.iterations());
}

constexpr TAxisOptions Log{aoLogarithmic};

BENCHMARK_CAPTURE(BM_AxisToPixel, Linear, TScaleSetup{{}, ltLogarithmic, false});
BENCHMARK_CAPTURE(BM_AxisToPixel, Logarithmic, TScaleSetup{Log, ltLogarithmic, false});
BENCHMARK_CAPTURE(BM_AxisToPixel, InverseLogarithmic,
                  TScaleSetup{Log, ltInverseLogarithmic, false});
BENCHMARK_CAPTURE(BM_AxisToPixel, CompositeFirst, TScaleSetup{Log, ltCompositeFirst, false});
BENCHMARK_CAPTURE(BM_AxisToPixel, CompositeSecond, TScaleSetup{Log, ltCompositeSecond, false});
BENCHMARK_CAPTURE(BM_AxisToPixel, LogCycles, TScaleSetup{Log, ltLogarithmic, true});

// A panel's two passes for a bottom and a left axis with grid on a 1600 x 900 bitmap:
// both measure on the whole rectangle, then each paints beside the plot they leave.
void BM_DrawAxes(benchmark::State& State) {
  TOwned<TBitmap> Bmp(New<TBitmap>());
  Bmp->SetSize(1600, 900);
  TCanvas* C = Bmp->Canvas();
  TOwned<TKXChartAxis> Bottom(New<TKXChartAxis>(nullptr));
  TOwned<TKXChartAxis> Left(New<TKXChartAxis>(nullptr));
  Bottom->SetLocation(calBottom);
  Bottom->SetMaximum(123456);
  Left->SetMaximum(1.75);
  Left->SetMinimum(-0.5);
  for (TKXChartAxis* A : {Bottom.get(), Left.get()})
    A->Grid()->SetDrawOptions(A->Grid()->DrawOptions() + agoMinorGrid);
  const TRect R{0, 0, 1600, 900};
  for (auto _ : State) {
    Left->CalculateBounds(C, R);
    Bottom->CalculateBounds(C, R);
    const TRect Plot{Left->Width(), 10, 1590, 900 - Bottom->Height()};
    Bottom->Draw(C, {Plot.Left, Plot.Top, Plot.Right, 900});
    Left->Draw(C, {0, Plot.Top, Plot.Right, Plot.Bottom});
  }
}
BENCHMARK(BM_DrawAxes)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();

// What saving and reading a form costs as its values grow: a form with a panel and a line
// chart of N values of a random walk, saved to JSON (BM_WriteForm/N) and read back into a
// fresh form (BM_ReadForm/N, the parse of the text included). Both should grow linearly
// with N: compare the /100000 and /1000000 rows.
//   ./kx bench 'BM_(Read|Write)Form'
#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "KXBenchSupport.h"
#include "kxcharts/KXChartModules.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace {

using namespace kx;
using kx::bench::TBenchForm;

TOwned<TBenchForm> MakeForm(int64_t N) {
  StartChartModules();
  TOwned<TBenchForm> Form(New<TBenchForm>(nullptr));
  Form->SetName("Form");
  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetName("Panel");
  auto* Chart = New<TKXLineChart>(Form.get());
  Chart->SetName("Line");
  Chart->SetPanel(Panel);
  std::mt19937 Random(20240601);
  std::normal_distribution<double> Step(0.0, 1.0);
  double Y = 0;
  Chart->Values()->BeginUpdate();
  for (int64_t I = 0; I < N; ++I)
    Chart->Values()->Add(static_cast<double>(I), Y += Step(Random));
  Chart->Values()->EndUpdate();
  return Form;
}

void BM_WriteForm(benchmark::State& State) {
  TOwned<TBenchForm> Form = MakeForm(State.range(0));
  size_t Bytes = 0;
  for (auto _ : State) {
    const std::string Json = SaveFormToString(Form.get());
    Bytes = Json.size();
    benchmark::DoNotOptimize(Json.data());
  }
  State.SetItemsProcessed(State.iterations() * State.range(0));
  State.counters["json_bytes"] = static_cast<double>(Bytes);
}

void BM_ReadForm(benchmark::State& State) {
  const std::string Json = SaveFormToString(MakeForm(State.range(0)).get());
  for (auto _ : State) {
    TOwned<TBenchForm> Form(New<TBenchForm>(nullptr));
    LoadFormFromString(Form.get(), Json);
    auto* Chart = static_cast<TKXLineChart*>(Form->FindComponent("Line"));
    if (!Chart || Chart->Values()->Count() != State.range(0))
      State.SkipWithError("the form read back lost values");
    State.PauseTiming();
    Form.reset();
    State.ResumeTiming();
  }
  State.SetItemsProcessed(State.iterations() * State.range(0));
}

} // namespace

BENCHMARK(BM_WriteForm)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadForm)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();

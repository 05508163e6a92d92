// What keeping a derived series live costs: a line chart of N values (a random walk at X =
// 0, 1, 2, ...) with an average per ten values (fpValueCount 10) computed into a second
// line chart, both standing alone. Each iteration appends one value to the source, which
// recalculates the target: BM_FunctionAppend in the incremental mode (the last period
// again), BM_FunctionRebuild as the function rebuilds by default (the whole target).
#include <benchmark/benchmark.h>

#include <random>

#include "KXBenchSupport.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/functions/KXChartFunction.h"

namespace {

using namespace kx;
using kx::bench::TBenchForm;

struct TFunctionBench {
  TOwned<TBenchForm> Form{New<TBenchForm>(nullptr)};
  TKXLineChart* Source = New<TKXLineChart>(Form.get());
  TKXLineChart* Target = New<TKXLineChart>(Form.get());
  TKXChartFunction* Function = New<TKXChartFunction>(Form.get());
  std::mt19937 Random{20240611};
  std::normal_distribution<double> Step{0.0, 1.0};
  double Y = 0;
  int64_t NextX = 0;

  TFunctionBench(int64_t N, bool Incremental) {
    Source->Values()->BeginUpdate();
    for (int64_t I = 0; I < N; ++I)
      Append();
    Source->Values()->EndUpdate();
    Function->SetIncremental(Incremental);
    Function->SetFunctionType(cfAverage);
    Function->SetPeriod(fpValueCount);
    Function->SetPeriodValue(10);
    Function->SetSourceChart(Source);
    Function->SetTargetChart(Target);
  }

  void Append() { Source->Values()->Add(static_cast<double>(NextX++), Y += Step(Random)); }
};

void Run(benchmark::State& State, bool Incremental) {
  TFunctionBench Bench(State.range(0), Incremental);
  Bench.Append(); // the first change after a rebuild sets the records up
  for (auto _ : State)
    Bench.Append();
  State.SetItemsProcessed(State.iterations());
  State.counters["target"] = Bench.Target->Values()->Count();
}

void BM_FunctionAppend(benchmark::State& State) {
  Run(State, true);
}

void BM_FunctionRebuild(benchmark::State& State) {
  Run(State, false);
}

BENCHMARK(BM_FunctionAppend)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FunctionRebuild)->Arg(1000000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

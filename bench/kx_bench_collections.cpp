// Collections under the load of a live chart: bulk adding, and a sliding window that drops
// the oldest item on every add. bytes_per_item counts the heap that one empty item costs
// (the item itself, as the allocator rounds it, plus its share of the slot array).

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include <benchmark/benchmark.h>

#include "kxcharts/toolkit/chartkit/KXCommon.h"

namespace {
std::atomic<long long> GHeapBytes{0};
} // namespace

void* operator new(std::size_t Size) {
  void* P = std::malloc(Size ? Size : 1);
  if (!P) throw std::bad_alloc();
  GHeapBytes.fetch_add(static_cast<long long>(malloc_usable_size(P)), std::memory_order_relaxed);
  return P;
}
void operator delete(void* P) noexcept {
  if (!P) return;
  GHeapBytes.fetch_sub(static_cast<long long>(malloc_usable_size(P)), std::memory_order_relaxed);
  std::free(P);
}
void operator delete(void* P, std::size_t) noexcept {
  operator delete(P);
}

namespace {

using namespace kx;

TGCollection* MakeCollection() {
  return New<TGCollection>(nullptr, ClassOf<TGCollectionItem>());
}

void BM_CollectionAdd(benchmark::State& State) {
  const auto N = static_cast<int32_t>(State.range(0));
  double BytesPerItem = 0;
  for (auto _ : State) {
    State.PauseTiming();
    TGCollection* C = MakeCollection();
    const long long Before = GHeapBytes.load();
    State.ResumeTiming();
    C->BeginUpdate();
    for (int32_t I = 0; I < N; ++I)
      C->Add();
    C->EndUpdate();
    State.PauseTiming();
    BytesPerItem = static_cast<double>(GHeapBytes.load() - Before) / N;
    C->Free();
    State.ResumeTiming();
  }
  State.SetItemsProcessed(State.iterations() * N);
  State.counters["bytes_per_item"] = BytesPerItem;
  State.counters["sizeof_item"] = sizeof(TGCollectionItem);
}
BENCHMARK(BM_CollectionAdd)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_CollectionSlidingWindow(benchmark::State& State) {
  const auto N = static_cast<int32_t>(State.range(0));
  constexpr int32_t Window = 100000;
  for (auto _ : State) {
    State.PauseTiming();
    TGCollection* C = MakeCollection();
    C->BeginUpdate();
    for (int32_t I = 0; I < Window; ++I)
      C->Add();
    State.ResumeTiming();
    for (int32_t I = 0; I < N; ++I) {
      C->Add();
      C->Delete(0);
    }
    State.PauseTiming();
    C->EndUpdate();
    if (C->Count() != Window || C->Items(Window - 1)->Index() != Window - 1)
      State.SkipWithError("the window lost its shape");
    C->Free();
    State.ResumeTiming();
  }
  State.SetItemsProcessed(State.iterations() * N);
}
BENCHMARK(BM_CollectionSlidingWindow)->Arg(1000000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

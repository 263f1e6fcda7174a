#include <benchmark/benchmark.h>
#include <unistd.h>

#include "utils/memory_observer.h"

namespace {

using kestrel_utils::MemoryObserver;

void BM_getMachinePhysicalRAM(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(MemoryObserver::getMachinePhysicalRAM());
  }
}
BENCHMARK(BM_getMachinePhysicalRAM);

void BM_getAvailableRAM(benchmark::State& state) {
  const MemoryObserver observer;
  for (auto _ : state) {
    benchmark::DoNotOptimize(observer.getAvailableRAM());
  }
}
BENCHMARK(BM_getAvailableRAM);

void BM_willFailToAllocate(benchmark::State& state) {
  const MemoryObserver observer;
  for (auto _ : state) {
    benchmark::DoNotOptimize(observer.willFailToAllocate(1 << 20));
  }
}
BENCHMARK(BM_willFailToAllocate);

void BM_getProcessUsedRAM(benchmark::State& state) {
  const int pid = getpid();
  for (auto _ : state) {
    benchmark::DoNotOptimize(MemoryObserver::getProcessUsedRAM(pid));
  }
}
BENCHMARK(BM_getProcessUsedRAM);

}  // namespace

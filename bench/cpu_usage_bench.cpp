// The cost of a call without its interval.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include "utils/cpu_usage.h"

namespace {

void BM_GetCpuUsage(benchmark::State& state) {
  const int pid = getpid();
  for (auto _ : state) {
    benchmark::DoNotOptimize(kestrel_utils::GetCpuUsage(pid, 0));
  }
}
BENCHMARK(BM_GetCpuUsage);

}  // namespace

#include <benchmark/benchmark.h>

#include "system/cpu_survey.h"

namespace {

void BM_SurveyCpu(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(kestrel::system::SurveyCpu());
  }
}
BENCHMARK(BM_SurveyCpu);

}  // namespace

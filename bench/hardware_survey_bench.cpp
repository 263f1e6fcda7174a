// Over the HIP runtime that the loader finds: set LD_LIBRARY_PATH and KESTREL_SIM_MACHINE for a
// simulated machine.

#include <benchmark/benchmark.h>

#include "system/hardware_survey.h"

namespace {

void BM_SurveyGpus(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(kestrel::system::SurveyGpus());
  }
}
BENCHMARK(BM_SurveyGpus);

void BM_SurveyHardware(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(kestrel::system::SurveyHardware());
  }
}
BENCHMARK(BM_SurveyHardware);

}  // namespace

// The calls of the other benchmarks through the C interface, to compare in one run.

#include <benchmark/benchmark.h>
#include <kestrelcore.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace {

template <typename Record>
Record NewRecord() {
  Record record{};
  record.struct_size = sizeof(Record);
  return record;
}

kestrel_result result = NewRecord<kestrel_result>();

void BM_kestrel_survey_cpu(benchmark::State& state) {
  auto cpu = NewRecord<kestrel_cpu>();
  for (auto _ : state) {
    benchmark::DoNotOptimize(kestrel_survey_cpu(&cpu, &result));
  }
}
BENCHMARK(BM_kestrel_survey_cpu);

void BM_kestrel_survey_gpus(benchmark::State& state) {
  std::array<kestrel_gpu, 16> gpus{};
  gpus[0].struct_size = sizeof(kestrel_gpu);
  std::size_t count = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(kestrel_survey_gpus(gpus.data(), gpus.size(), &count, &result));
  }
}
BENCHMARK(BM_kestrel_survey_gpus);

void BM_kestrel_machine_physical_ram(benchmark::State& state) {
  std::uint64_t bytes = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(kestrel_machine_physical_ram(&bytes, &result));
  }
}
BENCHMARK(BM_kestrel_machine_physical_ram);

void BM_kestrel_available_ram(benchmark::State& state) {
  std::uint64_t bytes = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(kestrel_available_ram(&bytes, &result));
  }
}
BENCHMARK(BM_kestrel_available_ram);

void BM_kestrel_will_fail_to_allocate(benchmark::State& state) {
  std::int32_t will_fail = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(kestrel_will_fail_to_allocate(1 << 20, &will_fail, &result));
  }
}
BENCHMARK(BM_kestrel_will_fail_to_allocate);

void BM_kestrel_memory_forecast(benchmark::State& state) {
  auto forecast = NewRecord<kestrel_forecast>();
  for (auto _ : state) {
    benchmark::DoNotOptimize(kestrel_memory_forecast(1 << 20, &forecast, &result));
  }
}
BENCHMARK(BM_kestrel_memory_forecast);

void BM_kestrel_process_used_ram(benchmark::State& state) {
  const int pid = getpid();
  std::uint64_t bytes = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(kestrel_process_used_ram(pid, &bytes, &result));
  }
}
BENCHMARK(BM_kestrel_process_used_ram);

}  // namespace

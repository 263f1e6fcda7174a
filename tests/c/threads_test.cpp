// Every call of the C interface from many threads at once: each gets the answer that it gets alone.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "c/kestrelcore.h"
#include "simulator/control.h"
#include "tests/c/records.h"
#include "tests/platform/host_process.h"

namespace kestrel::tests {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 50;
constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;

void InstallCard() {
  simulator::Device card;
  card.name = "Card";
  card.total_memory = 8 * kGiB;
  card.free_memory = 7 * kGiB;
  card.properties_memory = 8 * kGiB;
  simulator::Machine machine;
  machine.devices = {card};
  simulator::Install(machine, simulator::Recording::kOff);
}

// How many of the answers are not as expected.
int WrongAnswers() {
  auto result = NewRecord<kestrel_result>();
  auto gpu = NewRecord<kestrel_gpu>();
  auto cpu = NewRecord<kestrel_cpu>();
  auto forecast = NewRecord<kestrel_forecast>();
  std::size_t count = 0;
  std::uint64_t free = 0;
  std::uint64_t bytes = 0;
  float percent = 0;
  const std::array<bool, 8> answers = {
      kestrel_survey_gpus(&gpu, 1, &count, &result) == KESTREL_OK && gpu.total_memory == 8 * kGiB,
      kestrel_survey_cpu(&cpu, &result) == KESTREL_OK && cpu.extensions != 0,
      kestrel_gpu_memory(0, &free, nullptr, &result) == KESTREL_OK && free == 7 * kGiB,
      kestrel_machine_physical_vram(&bytes, &result) == KESTREL_OK && bytes == 8 * kGiB,
      kestrel_memory_forecast(0, &forecast, &result) == KESTREL_OK &&
          forecast.outcome == KESTREL_FORECAST_FITS,
      kestrel_process_used_ram(OwnPid(), &bytes, &result) == KESTREL_OK && bytes > 0,
      kestrel_cpu_usage(0, 0, &percent, &result) == KESTREL_INVALID_ARGUMENT,
      std::string(result.message) ==
          "Failed to get CPU usage for PID '0' since PID must be positive!",
  };
  int wrong = 0;
  for (const bool answer : answers) {
    wrong += answer ? 0 : 1;
  }
  return wrong;
}

TEST(ThreadsTest, CallsFromManyThreadsGetTheirOwnAnswers) {
  InstallCard();
  std::array<int, kThreads> wrong{};
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int& own : wrong) {
    threads.emplace_back([&own] {
      for (int round = 0; round < kRounds; ++round) {
        own += WrongAnswers();
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const int own : wrong) {
    EXPECT_EQ(own, 0);
  }
}

}  // namespace
}  // namespace kestrel::tests

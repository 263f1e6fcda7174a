#include "utils/cpu_usage.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>

#include "platform/platform.h"
#include "utils/diagnostic_line.h"
#include "utils/measure_cpu_usage.h"

namespace kestrel_utils {

namespace {

namespace platform = kestrel::platform;

// Message texts are fixed, including their wording.

constexpr float kCpuUsageError = -1.0F;
constexpr std::int64_t kNanosecondsPerMillisecond = 1'000'000;
constexpr double kNanosecondsPerSecond = 1e9;
constexpr double kTimeUnitsPerSecond = 1e7;  // process times count units of 100 ns
constexpr double kPercent = 100.0;

// Two samples of one process and the wall-clock time between them.
struct Interval {
  platform::ProcessTimes first;
  platform::ProcessTimes second;
  double elapsed_seconds;
  std::uint32_t processor_count;
};

std::int64_t Deadline(std::int64_t now, int milliseconds) noexcept {
  const std::int64_t nanoseconds = std::max(milliseconds, 0) * kNanosecondsPerMillisecond;
  constexpr std::int64_t kLatest = std::numeric_limits<std::int64_t>::max();
  return now > kLatest - nanoseconds ? kLatest : now + nanoseconds;
}

void SleepMilliseconds(int milliseconds) noexcept {
  std::int64_t now = platform::SteadyClockNanoseconds();
  const std::int64_t deadline = Deadline(now, milliseconds);
  while (now < deadline) {
    platform::SleepUntil(deadline);
    now = platform::SteadyClockNanoseconds();
  }
}

// Unsigned arithmetic: the sums may wrap, and their difference is still right.
double ConsumedSeconds(const Interval& interval) noexcept {
  const std::uint64_t consumed = (interval.second.kernel + interval.second.user) -
                                 (interval.first.kernel + interval.first.user);
  return static_cast<double>(consumed) / kTimeUnitsPerSecond;
}

float PercentOfMachine(const Interval& interval) noexcept {
  const double capacity = interval.elapsed_seconds * static_cast<double>(interval.processor_count);
  return static_cast<float>(ConsumedSeconds(interval) / capacity * kPercent);
}

// Returns `nullopt` if a sample fails or no time elapsed, and reports it. Returns `nullopt` without
// a report if the processors cannot be counted: there is no message for that.
std::optional<Interval> Measure(const platform::Process& process, int pid, int split_ms,
                                DiagnosticSink sink) noexcept {
  const auto first = process.Times();
  if (!first) {
    (DiagnosticLine(sink) << "Failed to get process times for PID " << pid).EndLine();
    return std::nullopt;
  }
  const std::int64_t start = platform::SteadyClockNanoseconds();
  SleepMilliseconds(split_ms);
  const auto second = process.Times();
  if (!second) {
    (DiagnosticLine(sink) << "Failed to get new process times for PID " << pid).EndLine();
    return std::nullopt;
  }
  const std::int64_t end = platform::SteadyClockNanoseconds();
  const auto processor_count = platform::LogicalProcessorCount();
  const double elapsed = static_cast<double>(end - start) / kNanosecondsPerSecond;
  if (!(elapsed > 0.0)) {
    (DiagnosticLine(sink) << "Total time elapsed while trying to calculation process '" << pid
                          << "'s CPU usage is 0! ")
        .EndLine();
    return std::nullopt;
  }
  if (!processor_count) {
    return std::nullopt;
  }
  return Interval{*first, *second, elapsed, *processor_count};
}

}  // namespace

float MeasureCpuUsage(int pid, int split_ms, DiagnosticSink sink) noexcept {
  if (pid < 1) {
    (DiagnosticLine(sink) << "Failed to get CPU usage for PID '" << pid
                          << "' since PID must be positive!")
        .EndLine();
    return kCpuUsageError;
  }
  const auto process = platform::Process::Open(pid, platform::ProcessRights::kTimes);
  if (!process) {
    (DiagnosticLine(sink) << "Failed to open process with PID " << pid).EndLine();
    return kCpuUsageError;
  }
  const auto interval = Measure(*process, pid, split_ms, sink);
  return interval ? PercentOfMachine(*interval) : kCpuUsageError;
}

float GetCpuUsage(int pid, int split_ms) noexcept {
  return MeasureCpuUsage(pid, split_ms, kStandardError);
}

}  // namespace kestrel_utils

#include <ctime>

#include "platform/platform.h"

namespace kestrel::platform {

namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

}  // namespace

// CLOCK_MONOTONIC is the clock of std::chrono::steady_clock in both standard libraries for Linux.
std::int64_t SteadyClockNanoseconds() noexcept {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * kNanosecondsPerSecond + now.tv_nsec;
}

void SleepUntil(std::int64_t deadline_nanoseconds) noexcept {
  timespec deadline{};
  deadline.tv_sec = deadline_nanoseconds / kNanosecondsPerSecond;
  deadline.tv_nsec = deadline_nanoseconds % kNanosecondsPerSecond;
  clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr);
}

}  // namespace kestrel::platform

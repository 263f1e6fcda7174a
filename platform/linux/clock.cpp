#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <limits>

#include "platform/platform.h"

namespace kestrel::platform {

namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t kNanosecondsPerMillisecond = 1'000'000;

// Ends up to a millisecond late, never early.
void SleepUntilByPolling(std::int64_t deadline_nanoseconds) noexcept {
  const std::int64_t left = deadline_nanoseconds - SteadyClockNanoseconds();
  constexpr std::int64_t kLongest = std::numeric_limits<int>::max();
  const std::int64_t timeout = left < 0 ? 0 : left / kNanosecondsPerMillisecond + 1;
  poll(nullptr, 0, static_cast<int>(std::min(timeout, kLongest)));
}

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
  const int error = clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr);
  // A sandbox may refuse a system call that its filter does not know. Without another way to sleep,
  // the caller would spin through the interval. std::this_thread::sleep_for makes the same call.
  if (error != 0 && error != EINTR) {
    SleepUntilByPolling(deadline_nanoseconds);
  }
}

}  // namespace kestrel::platform

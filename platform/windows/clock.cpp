#include <chrono>
#include <thread>

#include "platform/platform.h"

namespace kestrel::platform {

namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

// std::chrono::steady_clock reads the performance counter.
std::int64_t SteadyClockNanoseconds() noexcept {
  const std::chrono::nanoseconds now = Clock::now().time_since_epoch();
  return now.count();
}

// Windows sleeps for whole milliseconds. The duration is rounded up here: with a runtime that
// rounds down, the caller would spin through the last millisecond, possibly in the process that it
// measures.
void SleepUntil(std::int64_t deadline_nanoseconds) noexcept {
  const std::chrono::nanoseconds left(deadline_nanoseconds - SteadyClockNanoseconds());
  std::this_thread::sleep_for(std::chrono::ceil<std::chrono::milliseconds>(left));
}

}  // namespace kestrel::platform

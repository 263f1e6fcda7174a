#include <chrono>
#include <thread>

#include "platform/platform.h"

namespace kestrel::platform {

namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

// The performance counter is what is behind std::chrono::steady_clock.
std::int64_t SteadyClockNanoseconds() noexcept {
  return std::chrono::nanoseconds(Clock::now().time_since_epoch()).count();
}

// Windows sleeps by whole milliseconds. They are rounded up here: a runtime that cuts the rest off
// would have the caller spin through the last millisecond, in the very process that it measures.
void SleepUntil(std::int64_t deadline_nanoseconds) noexcept {
  const std::chrono::nanoseconds left(deadline_nanoseconds - SteadyClockNanoseconds());
  std::this_thread::sleep_for(std::chrono::ceil<std::chrono::milliseconds>(left));
}

}  // namespace kestrel::platform

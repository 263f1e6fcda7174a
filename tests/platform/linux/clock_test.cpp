#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <cerrno>
#include <stdexcept>

#include "platform/platform.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/refused_calls.h"

namespace kestrel::tests {
namespace {

using platform::SleepUntil;
using platform::SteadyClockNanoseconds;

// As the filters of some sandboxes do. A loop that spins takes thousands of turns.
TEST(LinuxClockTest, WhereClockNanosleepIsRefusedOneSleepReachesTheDeadline) {
  for (const int error : {EPERM, ENOSYS}) {
    const Outcome outcome = RunApart([error] {
      RefuseCalls(SYS_clock_nanosleep, error);
      const auto deadline = SteadyClockNanoseconds() + 20'000'000;
      SleepUntil(deadline);
      if (SteadyClockNanoseconds() < deadline) {
        throw std::runtime_error("the sleep ended early");
      }
    });
    EXPECT_TRUE(outcome.ran) << error << ": " << outcome.diagnostics;
  }
}

}  // namespace
}  // namespace kestrel::tests

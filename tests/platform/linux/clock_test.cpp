#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/syscall.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <stdexcept>
#include <vector>

#include "platform/platform.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/fake_time.h"
#include "tests/platform/linux/refused_calls.h"

namespace kestrel::tests {
namespace {

using platform::SleepUntil;
using platform::SteadyClockNanoseconds;

// Calls SleepUntil on a machine whose clock reads `now` and whose sleeps end at once.
class FakedClockTest : public testing::Test {
 protected:
  FakedClockTest() { FakeTime().sleeps = false; }
  ~FakedClockTest() override { FakeTime() = {}; }
};

TEST_F(FakedClockTest, ReadingIsInNanoseconds) {
  FakeTime().now = {5, 700'000'001};
  EXPECT_EQ(SteadyClockNanoseconds(), 5'700'000'001);
}

TEST_F(FakedClockTest, SleepEndsAtTheDeadline) {
  SleepUntil(7'000'000'009);
  ASSERT_EQ(FakeTime().deadlines.size(), 1U);
  EXPECT_EQ(FakeTime().deadlines[0].tv_sec, 7);
  EXPECT_EQ(FakeTime().deadlines[0].tv_nsec, 9);
  EXPECT_TRUE(FakeTime().timeouts.empty());
}

TEST_F(FakedClockTest, InterruptedSleepIsNotContinuedByPolling) {
  FakeTime().sleep_error = EINTR;
  SleepUntil(7'000'000'009);
  EXPECT_TRUE(FakeTime().timeouts.empty());
}

TEST_F(FakedClockTest, PollingEndsInTheMillisecondAfterTheDeadline) {
  FakeTime().sleep_error = ENOSYS;
  FakeTime().now = {5, 0};
  for (const std::int64_t left : {-2'000'000, -1, 0, 999'999, 1'000'000, 2'500'000}) {
    SleepUntil(5'000'000'000 + left);
  }
  EXPECT_EQ(FakeTime().timeouts, (std::vector<int>{0, 0, 1, 1, 2, 3}));
}

// poll takes an int.
TEST_F(FakedClockTest, PollingForMoreThan24DaysEndsEarly) {
  FakeTime().sleep_error = ENOSYS;
  FakeTime().now = {5, 0};
  SleepUntil(std::int64_t{5 + 2'147'484} * 1'000'000'000);
  EXPECT_EQ(FakeTime().timeouts, std::vector<int>{2'147'483'647});
}

TEST(LinuxClockTest, ReadingLiesBetweenTwoOfTheSteadyClock) {
  const auto before = std::chrono::steady_clock::now().time_since_epoch();
  const std::chrono::nanoseconds reading(SteadyClockNanoseconds());
  const auto after = std::chrono::steady_clock::now().time_since_epoch();
  EXPECT_LE(before, reading);
  EXPECT_LE(reading, after);
}

// How often this thread has given up the processor to wait.
long Waits() {
  rusage usage{};
  EXPECT_EQ(getrusage(RUSAGE_THREAD, &usage), 0);
  return usage.ru_nvcsw;
}

// Not the processor time that it takes: a hypervisor may count time that it gives to others. A
// sleep that returns at once takes hundreds of turns, and one that spins never ends this test. On a
// very busy machine the deadline may pass before the first turn; then there is another attempt.
TEST(LinuxClockTest, SleepGivesUpTheProcessorUntilTheDeadline) {
  const long before = Waits();
  while (Waits() == before) {
    const std::int64_t deadline = SteadyClockNanoseconds() + 50'000'000;
    int turns = 0;
    for (; SteadyClockNanoseconds() < deadline; ++turns) {
      SleepUntil(deadline);
    }
    ASSERT_LT(turns, 100);
  }
}

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

#include "utils/cpu_usage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "tests/fakes/cerr_recorder.h"
#include "tests/fakes/platform_fake.h"
#include "tests/fakes/sink_recorder.h"
#include "utils/measure_cpu_usage.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::GetCpuUsage;
using kestrel_utils::MeasureCpuUsage;
using platform::ProcessTimes;

constexpr std::uint64_t kSecond = 10'000'000;  // of process time, in units of 100 ns
constexpr std::uint64_t kMillisecond = 10'000;

class CpuUsageTest : public testing::Test {
 protected:
  CpuUsageTest() { Platform() = {}; }

  // A failing call returns -1, writes one line, flushes once and closes its handle.
  void ExpectFailure(int pid, int split_ms, const std::string& message) {
    EXPECT_EQ(GetCpuUsage(pid, split_ms), -1.0F);
    EXPECT_EQ(cerr_.writes(), std::vector<std::string>{message + "\n"});
    EXPECT_EQ(cerr_.flushes(), 1);
    EXPECT_EQ(Platform().open_handles, 0);
  }

  float ExpectSilent(int pid, int split_ms) {
    const float usage = GetCpuUsage(pid, split_ms);
    EXPECT_EQ(cerr_.text(), "");
    EXPECT_EQ(Platform().open_handles, 0);
    return usage;
  }

  CerrRecorder cerr_;
};

TEST_F(CpuUsageTest, OneBusyThreadOnEightProcessorsIs12Point5Percent) {
  Platform().times = {{3 * kSecond, 4 * kSecond}, {3 * kSecond, 4 * kSecond + 500 * kMillisecond}};
  EXPECT_EQ(ExpectSilent(1234, 500), 12.5F);
}

TEST_F(CpuUsageTest, AllProcessorsBusyIs100Percent) {
  Platform().times = {{0, 0}, {3 * kSecond, 5 * kSecond}};
  EXPECT_EQ(ExpectSilent(1234, 1000), 100.0F);
}

TEST_F(CpuUsageTest, KernelAndUserTimeBothCount) {
  Platform().logical_processors = 1;
  Platform().times = {{kSecond, kSecond},
                      {kSecond + 100 * kMillisecond, kSecond + 300 * kMillisecond}};
  EXPECT_EQ(ExpectSilent(1234, 1000), 40.0F);
}

TEST_F(CpuUsageTest, IdleProcessIsZeroPercent) {
  Platform().times = {{7 * kSecond, 9 * kSecond}};
  EXPECT_EQ(ExpectSilent(1234, 500), 0.0F);
}

TEST_F(CpuUsageTest, MoreThan100PercentIsNotClamped) {
  Platform().logical_processors = 1;
  Platform().times = {{0, 0}, {0, 3 * kSecond}};
  EXPECT_EQ(ExpectSilent(1234, 1000), 300.0F);
}

TEST_F(CpuUsageTest, WrappingTimesAreSubtractedCorrectly) {
  const std::uint64_t last = std::numeric_limits<std::uint64_t>::max();
  Platform().logical_processors = 1;
  Platform().times = {{last, last - kSecond + 1}, {last, 0}};
  EXPECT_EQ(ExpectSilent(1234, 1000), 100.0F);
}

// The difference is unsigned, so the percentage is never negative.
TEST_F(CpuUsageTest, TimesThatGoBackAreHugeAndPositive) {
  Platform().logical_processors = 1;
  Platform().times = {{0, 1}, {0, 0}};
  EXPECT_EQ(ExpectSilent(1234, 1000),
            static_cast<float>(18446744073709551615.0 / 1e7 / (1.0 * 1.0) * 100.0));
}

TEST_F(CpuUsageTest, WallClockRunsFromFirstToSecondSample) {
  Platform().logical_processors = 1;
  Platform().clock_step = 250'000'000;  // four readings: start, before and after the sleep, end
  Platform().times = {{0, 0}, {0, kSecond}};
  // The clock is read at 1.0 s (start) and at 1.25 s (deadline 2.25 s). It is read again after the
  // sleep, at 2.25 s, and at 2.5 s (end).
  EXPECT_EQ(ExpectSilent(1234, 1000), static_cast<float>(1.0 / 1.5 * 100.0));
}

TEST_F(CpuUsageTest, ProcessOneIsMeasured) {
  Platform().logical_processors = 1;
  Platform().times = {{0, 0}, {0, kSecond}};
  EXPECT_EQ(ExpectSilent(1, 1000), 100.0F);
}

TEST_F(CpuUsageTest, CallsAreMadeInFixedOrder) {
  ExpectSilent(1234, 500);
  EXPECT_EQ(Platform().calls,
            (std::vector<std::string>{"Process::Open(1234, times)", "Process::Times()",
                                      "SteadyClock()", "SteadyClock()", "SleepUntil(1500000000)",
                                      "SteadyClock()", "Process::Times()", "SteadyClock()",
                                      "LogicalProcessorCount()", "Process::Close()"}));
}

TEST_F(CpuUsageTest, EarlyWakeUpSleepsAgain) {
  Platform().early_wake_ups = {1'000'000'001, 1'499'999'999};
  Platform().times = {{0, 0}, {0, 4 * kSecond}};
  EXPECT_EQ(ExpectSilent(1234, 500), 100.0F);
  EXPECT_EQ(std::count(Platform().calls.begin(), Platform().calls.end(), "SleepUntil(1500000000)"),
            3);
}

TEST_F(CpuUsageTest, IntervalOfZeroOrLessIsMeasuredWithoutSleep) {
  for (const int split_ms : {0, -1, std::numeric_limits<int>::min()}) {
    Platform() = {};
    Platform().clock_step = 1000;  // so that a little time passes between two readings
    Platform().times = {{0, 0}, {0, 80}};
    // Three readings, at the start, for the deadline and at the end: 2000 ns.
    EXPECT_EQ(ExpectSilent(1234, split_ms), 50.0F) << split_ms;
    for (const auto& call : Platform().calls) {
      EXPECT_EQ(call.find("SleepUntil"), std::string::npos) << call;
    }
  }
}

TEST_F(CpuUsageTest, DeadlineBeyondTheClockIsItsMaximum) {
  const std::int64_t last = std::numeric_limits<std::int64_t>::max();
  Platform().now = last - 1'000'000;
  ExpectSilent(1234, std::numeric_limits<int>::max());
  EXPECT_EQ(Platform().calls[4], "SleepUntil(" + std::to_string(last) + ")");
}

TEST_F(CpuUsageTest, LongestIntervalIsNotCut) {
  ExpectSilent(1234, std::numeric_limits<int>::max());
  EXPECT_EQ(Platform().calls[4], "SleepUntil(2147484647000000)");
}

TEST_F(CpuUsageTest, PidZeroIsRefusedFirst) {
  ExpectFailure(0, 500, "Failed to get CPU usage for PID '0' since PID must be positive!");
  EXPECT_TRUE(Platform().calls.empty());
}

TEST_F(CpuUsageTest, NegativePidIsRefusedFirst) {
  ExpectFailure(-5, 500, "Failed to get CPU usage for PID '-5' since PID must be positive!");
  EXPECT_TRUE(Platform().calls.empty());
}

TEST_F(CpuUsageTest, SmallestPidIsWrittenWhole) {
  ExpectFailure(std::numeric_limits<int>::min(), 500,
                "Failed to get CPU usage for PID '-2147483648' since PID must be positive!");
}

TEST_F(CpuUsageTest, FailedOpenIsReportedWithoutSleep) {
  Platform().Fail("Process::Open");
  ExpectFailure(4711, 500, "Failed to open process with PID 4711");
  EXPECT_EQ(Platform().calls, std::vector<std::string>{"Process::Open(4711, times)"});
}

TEST_F(CpuUsageTest, FailedFirstSampleIsReportedWithoutSleep) {
  Platform().Fail("Process::Times");
  ExpectFailure(4711, 500, "Failed to get process times for PID 4711");
  EXPECT_EQ(Platform().calls, (std::vector<std::string>{"Process::Open(4711, times)",
                                                        "Process::Times()", "Process::Close()"}));
}

TEST_F(CpuUsageTest, FailedSecondSampleIsReported) {
  Platform().Fail("Process::Times", 2);
  ExpectFailure(4711, 500, "Failed to get new process times for PID 4711");
  EXPECT_EQ(Platform().calls.back(), "Process::Close()");
}

TEST_F(CpuUsageTest, ZeroElapsedTimeIsReported) {
  ExpectFailure(4711, 0,
                "Total time elapsed while trying to calculation process '4711's CPU usage is 0! ");
  EXPECT_EQ(Platform().calls, (std::vector<std::string>{
                                  "Process::Open(4711, times)", "Process::Times()", "SteadyClock()",
                                  "SteadyClock()", "Process::Times()", "SteadyClock()",
                                  "LogicalProcessorCount()", "Process::Close()"}));
}

TEST_F(CpuUsageTest, ClockThatGoesBackIsReported) {
  Platform().clock_step = -1;
  ExpectFailure(4711, 0,
                "Total time elapsed while trying to calculation process '4711's CPU usage is 0! ");
}

TEST_F(CpuUsageTest, CallerSinkGetsEveryMessageInsteadOfStandardError) {
  SinkRecorder recorder;
  EXPECT_EQ(MeasureCpuUsage(0, 0, recorder.sink()), -1.0F);
  EXPECT_EQ(MeasureCpuUsage(4711, 0, recorder.sink()), -1.0F);
  Platform().Fail("Process::Times", 4);
  EXPECT_EQ(MeasureCpuUsage(4711, 0, recorder.sink()), -1.0F);
  EXPECT_EQ(MeasureCpuUsage(4711, 0, recorder.sink()), -1.0F);
  Platform().Fail("Process::Open");
  EXPECT_EQ(MeasureCpuUsage(4711, 0, recorder.sink()), -1.0F);
  EXPECT_EQ(recorder.text(),
            "Failed to get CPU usage for PID '0' since PID must be positive!\n|"
            "Total time elapsed while trying to calculation process '4711's CPU usage is 0! \n|"
            "Failed to get new process times for PID 4711\n|"
            "Failed to get process times for PID 4711\n|"
            "Failed to open process with PID 4711\n|");
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(CpuUsageTest, ThrowingStreamOfTheHostIsContained) {
  static_assert(noexcept(GetCpuUsage(1, 1)));
  cerr_.Throw();
  EXPECT_EQ(GetCpuUsage(0, 0), -1.0F);
  EXPECT_EQ(cerr_.failed_writes(), 1);
}

TEST_F(CpuUsageTest, UnknownProcessorCountFailsWithoutMessage) {
  Platform().Fail("LogicalProcessorCount");
  EXPECT_EQ(ExpectSilent(4711, 500), -1.0F);
}

}  // namespace
}  // namespace kestrel::tests

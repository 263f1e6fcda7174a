#include <gtest/gtest.h>

#include <cstdint>

#include "c/kestrelcore.h"
#include "tests/c/records.h"
#include "tests/fakes/cerr_recorder.h"
#include "tests/fakes/platform_fake.h"

namespace kestrel::tests {
namespace {

constexpr int kPid = 4321;

class ProcessTest : public testing::Test {
 protected:
  ProcessTest() {
    Platform() = {};
    Platform().clock_step = 500'000'000;                  // each reading is half a second later
    Platform().times = {{0, 0}, {1'000'000, 1'000'000}};  // 0.2 s of processor time
    Platform().resident_bytes = 12'345;
  }

  kestrel_result result_ = UsedResult();
  float percent_ = 77;
  std::uint64_t bytes_ = 77;
  CerrRecorder cerr_;
};

TEST_F(ProcessTest, CpuUsageIsThePercentageOfTheWholeMachine) {
  EXPECT_EQ(kestrel_cpu_usage(kPid, 0, &percent_, &result_), KESTREL_OK);
  EXPECT_GT(percent_, 0);
  EXPECT_LT(percent_, 100);
  EXPECT_EQ(result_.status, KESTREL_OK);
}

TEST_F(ProcessTest, PidBelowOneIsAnInvalidArgumentWithTheTextOfTheMeter) {
  EXPECT_EQ(kestrel_cpu_usage(0, 0, &percent_, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(percent_, -1);
  EXPECT_STREQ(result_.message, "Failed to get CPU usage for PID '0' since PID must be positive!");
  EXPECT_EQ(kestrel_process_used_ram(-5, &bytes_, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(bytes_, 0U);
  EXPECT_STREQ(result_.message, "Failed to get used RAM for PID '-5' since PID must be positive!");
  EXPECT_TRUE(Platform().calls.empty());
}

TEST_F(ProcessTest, AbsentProcessFailsWithTheTextOfTheMeter) {
  Platform().dead_pid = kPid;
  EXPECT_EQ(kestrel_cpu_usage(kPid, 0, &percent_, &result_), KESTREL_PROCESS_QUERY_FAILED);
  EXPECT_EQ(percent_, -1);
  EXPECT_STREQ(result_.message, "Failed to open process with PID 4321");
  EXPECT_EQ(kestrel_process_used_ram(kPid, &bytes_, &result_), KESTREL_PROCESS_QUERY_FAILED);
  EXPECT_EQ(bytes_, 0U);
  EXPECT_STREQ(result_.message, "Failed to open process with PID 4321");
}

TEST_F(ProcessTest, FailedSampleFailsWithTheTextOfTheMeter) {
  Platform().Fail("Process::Times", 2);
  EXPECT_EQ(kestrel_cpu_usage(kPid, 0, &percent_, &result_), KESTREL_PROCESS_QUERY_FAILED);
  EXPECT_STREQ(result_.message, "Failed to get new process times for PID 4321");
}

TEST_F(ProcessTest, FailureThatTheMeterDoesNotExplainHasATextToo) {
  Platform().Fail("Process::ResidentBytes");
  EXPECT_EQ(kestrel_process_used_ram(kPid, &bytes_, &result_), KESTREL_PROCESS_QUERY_FAILED);
  EXPECT_STREQ(result_.message, "Failed to read the figures of the process");
}

TEST_F(ProcessTest, UsedRamIsTheResidentMemory) {
  EXPECT_EQ(kestrel_process_used_ram(kPid, &bytes_, &result_), KESTREL_OK);
  EXPECT_EQ(bytes_, 12'345U);
  EXPECT_EQ(result_.status, KESTREL_OK);
  EXPECT_STREQ(result_.message, "");
}

// As a thread of the kernel.
TEST_F(ProcessTest, ProcessWithoutResidentMemoryUsesNone) {
  Platform().resident_bytes = 0;
  EXPECT_EQ(kestrel_process_used_ram(kPid, &bytes_, &result_), KESTREL_OK);
  EXPECT_EQ(bytes_, 0U);
}

TEST_F(ProcessTest, IdleProcessUsesNoneOfTheMachine) {
  Platform().times = {{0, 0}, {0, 0}};
  EXPECT_EQ(kestrel_cpu_usage(kPid, 0, &percent_, &result_), KESTREL_OK);
  EXPECT_EQ(percent_, 0);
}

TEST_F(ProcessTest, LowestPidIsAValidArgument) {
  Platform().dead_pid = 1;
  EXPECT_EQ(kestrel_process_used_ram(1, &bytes_, &result_), KESTREL_PROCESS_QUERY_FAILED);
  EXPECT_EQ(kestrel_cpu_usage(1, 0, &percent_, &result_), KESTREL_PROCESS_QUERY_FAILED);
}

TEST_F(ProcessTest, NothingIsWrittenToStandardErrorNextToAResult) {
  static_cast<void>(kestrel_cpu_usage(0, 0, &percent_, &result_));
  static_cast<void>(kestrel_process_used_ram(0, &bytes_, &result_));
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(ProcessTest, WithoutAResultTheDiagnosticsAreThoseOfTheCppCalls) {
  EXPECT_EQ(kestrel_cpu_usage(0, 0, &percent_, nullptr), KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(kestrel_process_used_ram(0, &bytes_, nullptr), KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(cerr_.text(),
            "Failed to get CPU usage for PID '0' since PID must be positive!\n"
            "Failed to get used RAM for PID '0' since PID must be positive!\n");
}

TEST_F(ProcessTest, NullOutputIsAnInvalidArgument) {
  EXPECT_EQ(kestrel_cpu_usage(kPid, 0, nullptr, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(kestrel_process_used_ram(kPid, nullptr, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_STREQ(result_.message, "The pointer to the output is null");
  EXPECT_TRUE(Platform().calls.empty());
}

}  // namespace
}  // namespace kestrel::tests

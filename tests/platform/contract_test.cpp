// The contract of every implementation of the seam: the fake and each native one. It asserts
// relations, since the figures depend on the machine.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

#include "platform/platform.h"
#include "tests/platform/host_process.h"

namespace kestrel::tests {
namespace {

using platform::Cpuid;
using platform::CpuidRegisters;
using platform::GroupDirectory;
using platform::LogicalProcessorCount;
using platform::MemoryLimit;
using platform::Process;
using platform::ProcessorArchitecture;
using platform::ProcessRights;
using platform::QueryMemoryLimit;
using platform::QueryMemoryStatus;
using platform::QueryTotalPhysicalMemory;
using platform::SleepUntil;
using platform::SteadyClockNanoseconds;

constexpr ProcessRights kBothRights[] = {ProcessRights::kTimes, ProcessRights::kMemory};

// The library is built for x86-64 alone, so its tests run nowhere else.
TEST(PlatformContractTest, ArchitectureIsX8664) { EXPECT_EQ(ProcessorArchitecture(), 9); }

TEST(PlatformContractTest, CpuidReturnsTheSameEveryTime) {
  const CpuidRegisters first = Cpuid(7, 0);
  const CpuidRegisters second = Cpuid(7, 0);
  EXPECT_EQ(first.eax, second.eax);
  EXPECT_EQ(first.ebx, second.ebx);
  EXPECT_EQ(first.ecx, second.ecx);
  EXPECT_EQ(first.edx, second.edx);
}

TEST(PlatformContractTest, ProcessorCountIsAtLeastOne) {
  EXPECT_GE(LogicalProcessorCount().value_or(0), 1U);
}

TEST(PlatformContractTest, AvailableMemoryIsAtMostTheTotal) {
  const auto status = QueryMemoryStatus();
  ASSERT_TRUE(status);
  // Not that it is positive: a machine or a container may have none left.
  EXPECT_LE(status->available_physical, status->total_physical);
}

TEST(PlatformContractTest, OnlyMemoryGroupLimitHasDirectory) {
  GroupDirectory directory;
  directory.fill('x');
  const auto status = QueryMemoryLimit(directory);
  ASSERT_TRUE(status);
  EXPECT_LE(status->available_physical, status->total_physical);
  const bool is_named = directory.front() != '\0';
  EXPECT_EQ(is_named, status->limit == MemoryLimit::kMemoryGroup);
  EXPECT_NE(std::find(directory.begin(), directory.end(), '\0'), directory.end());
}

TEST(PlatformContractTest, BothMemoryQueriesReturnTheSameTotal) {
  const auto status = QueryMemoryStatus();
  const auto total = QueryTotalPhysicalMemory();
  ASSERT_TRUE(status);
  ASSERT_TRUE(total);
  EXPECT_EQ(status->total_physical, *total);
}

TEST(PlatformContractTest, TimesOfThisProcessDoNotDecrease) {
  const auto process = Process::Open(OwnPid(), ProcessRights::kTimes);
  ASSERT_TRUE(process);
  const auto first = process->Times();
  const auto second = process->Times();
  ASSERT_TRUE(first);
  ASSERT_TRUE(second);
  EXPECT_GE(second->kernel + second->user, first->kernel + first->user);
}

TEST(PlatformContractTest, WorkOfThisProcessIncreasesItsTimes) {
  const auto process = Process::Open(OwnPid(), ProcessRights::kTimes);
  ASSERT_TRUE(process);
  const auto first = process->Times();
  ASSERT_TRUE(first);
  auto now = first;
  // Without a limit of time: a busy machine may take long to give this process its share.
  while (now && now->kernel + now->user == first->kernel + first->user) {
    now = process->Times();
  }
  EXPECT_TRUE(now);
}

TEST(PlatformContractTest, ResidentMemoryOfThisProcessIsPositive) {
  const auto process = Process::Open(OwnPid(), ProcessRights::kMemory);
  ASSERT_TRUE(process);
  const auto resident = process->ResidentBytes();
  ASSERT_TRUE(resident);
  EXPECT_GT(*resident, 0U);
}

TEST(PlatformContractTest, InvalidPidsDoNotOpen) {
  for (const int pid : {0, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    for (const ProcessRights rights : kBothRights) {
      EXPECT_FALSE(Process::Open(pid, rights)) << pid;
    }
  }
}

// Linux needs a handle only for the memory: the calling process finds its times without one.
TEST(PlatformContractTest, MemoryNeedsOneHandle) {
  const int before = OpenHandleCount();
  const auto process = Process::Open(OwnPid(), ProcessRights::kMemory);
  ASSERT_TRUE(process);
  EXPECT_EQ(OpenHandleCount(), before + 1);
}

TEST(PlatformContractTest, MovedHandleIsClosedOnce) {
  const int before = OpenHandleCount();
  for (const ProcessRights rights : kBothRights) {
    auto process = Process::Open(OwnPid(), rights);
    ASSERT_TRUE(process);
    const int opened = OpenHandleCount();
    auto moved = std::make_unique<Process>(std::move(*process));
    process.reset();
    EXPECT_EQ(OpenHandleCount(), opened);
    moved.reset();
    EXPECT_EQ(OpenHandleCount(), before);
  }
}

TEST(PlatformContractTest, ClockDoesNotGoBack) {
  const std::int64_t first = SteadyClockNanoseconds();
  const std::int64_t second = SteadyClockNanoseconds();
  EXPECT_GE(second, first);
}

// One sleep may end early; only the loop that its callers use is sure to reach the deadline.
TEST(PlatformContractTest, RepeatedSleepReachesTheDeadline) {
  const std::int64_t deadline = SteadyClockNanoseconds() + 2'000'000;
  while (SteadyClockNanoseconds() < deadline) {
    SleepUntil(deadline);
  }
  EXPECT_GE(SteadyClockNanoseconds(), deadline);
}

// If either sleep does not return, ctest ends the test.
TEST(PlatformContractTest, DeadlineInThePastDoesNotSleep) {
  const std::int64_t before = SteadyClockNanoseconds();
  SleepUntil(before - 1);
  SleepUntil(0);
  EXPECT_GE(SteadyClockNanoseconds(), before);
}

}  // namespace
}  // namespace kestrel::tests

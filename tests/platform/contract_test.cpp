// What every implementation of the seam holds to: the fake one and each native one. It asserts
// relations, since the figures are the machine's.

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

#include "platform/platform.h"
#include "tests/platform/host_process.h"

namespace kestrel::platform {
namespace {

using tests::OpenHandleCount;
using tests::OwnPid;

constexpr ProcessRights kBothRights[] = {ProcessRights::kTimes, ProcessRights::kMemory};

// The tests run where the library does.
TEST(PlatformContractTest, TheArchitectureIsX8664) { EXPECT_EQ(ProcessorArchitecture(), 9); }

TEST(PlatformContractTest, CpuidAnswersTheSameEveryTime) {
  const CpuidRegisters first = Cpuid(7, 0);
  const CpuidRegisters second = Cpuid(7, 0);
  EXPECT_EQ(first.eax, second.eax);
  EXPECT_EQ(first.ebx, second.ebx);
  EXPECT_EQ(first.ecx, second.ecx);
  EXPECT_EQ(first.edx, second.edx);
}

TEST(PlatformContractTest, ThereIsAProcessor) { EXPECT_GE(LogicalProcessorCount(), 1U); }

TEST(PlatformContractTest, AvailableMemoryIsPartOfTheTotal) {
  const auto status = QueryMemoryStatus();
  ASSERT_TRUE(status);
  EXPECT_LE(status->available_physical, status->total_physical);
}

// Not that the available memory is positive: a machine or a container may have none left.
TEST(PlatformContractTest, BothQueriesTellTheSameTotal) {
  const auto status = QueryMemoryStatus();
  const auto total = QueryTotalPhysicalMemory();
  ASSERT_TRUE(status);
  ASSERT_TRUE(total);
  EXPECT_EQ(status->total_physical, *total);
}

TEST(PlatformContractTest, ThisProcessHasTimesThatDoNotGoBack) {
  const auto process = Process::Open(OwnPid(), ProcessRights::kTimes);
  ASSERT_TRUE(process);
  const auto first = process->Times();
  const auto second = process->Times();
  ASSERT_TRUE(first);
  ASSERT_TRUE(second);
  EXPECT_GE(second->kernel + second->user, first->kernel + first->user);
}

TEST(PlatformContractTest, WorkOfThisProcessShowsInItsTimes) {
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

TEST(PlatformContractTest, ThisProcessHasResidentMemory) {
  const auto process = Process::Open(OwnPid(), ProcessRights::kMemory);
  ASSERT_TRUE(process);
  const auto resident = process->ResidentBytes();
  ASSERT_TRUE(resident);
  EXPECT_GT(*resident, 0U);
}

TEST(PlatformContractTest, WhatIsNoProcessDoesNotOpen) {
  for (const int pid : {0, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    for (const ProcessRights rights : kBothRights) {
      EXPECT_FALSE(Process::Open(pid, rights)) << pid;
    }
  }
}

TEST(PlatformContractTest, AHandleClosesItselfAndMoves) {
  const int before = OpenHandleCount();
  for (const ProcessRights rights : kBothRights) {
    auto process = Process::Open(OwnPid(), rights);
    ASSERT_TRUE(process);
    EXPECT_EQ(OpenHandleCount(), before + 1);
    auto moved = std::make_unique<Process>(std::move(*process));
    process.reset();
    EXPECT_EQ(OpenHandleCount(), before + 1);
    moved.reset();
    EXPECT_EQ(OpenHandleCount(), before);
  }
}

TEST(PlatformContractTest, TheClockDoesNotGoBack) {
  const std::int64_t first = SteadyClockNanoseconds();
  const std::int64_t second = SteadyClockNanoseconds();
  EXPECT_GE(second, first);
}

// It may end early, so only the loop that its callers use is sure to get there.
TEST(PlatformContractTest, SleepingGetsToTheDeadline) {
  const std::int64_t deadline = SteadyClockNanoseconds() + 2'000'000;
  while (SteadyClockNanoseconds() < deadline) {
    SleepUntil(deadline);
  }
  EXPECT_GE(SteadyClockNanoseconds(), deadline);
}

// That it returns at all is the assertion: ctest ends a test that does not.
TEST(PlatformContractTest, ADeadlineInThePastIsNoSleep) {
  const std::int64_t before = SteadyClockNanoseconds();
  SleepUntil(before - 1);
  SleepUntil(0);
  EXPECT_GE(SteadyClockNanoseconds(), before);
}

}  // namespace
}  // namespace kestrel::platform

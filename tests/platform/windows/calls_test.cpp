#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "tests/platform/windows/win32_recorder.h"
#include "utils/cpu_usage.h"
#include "utils/memory_observer.h"

// The native layer over recorded system functions: which it calls, with what, and what it makes of
// their answers. That the system itself answers so is what the contract suite shows.

namespace kestrel::platform {

namespace {

using Calls = std::vector<std::string>;

constexpr int kPid = 1234;
constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;

class PlatformCalls : public testing::Test {
 protected:
  PlatformCalls() { win32() = tests::Win32{}; }

  static tests::Win32& win32() { return tests::RecordedWin32(); }
};

TEST_F(PlatformCalls, ArchitectureIsThatOfSystemInfo) {
  for (const int code : {0, 5, 6, 9, 12, 0xFFFF}) {
    win32().system.wProcessorArchitecture = static_cast<WORD>(code);
    EXPECT_EQ(ProcessorArchitecture(), code);
  }
  EXPECT_EQ(win32().calls, Calls(6, "GetSystemInfo()"));
}

TEST_F(PlatformCalls, ProcessorCountIsThatOfSystemInfo) {
  win32().system.dwNumberOfProcessors = 64;
  EXPECT_EQ(LogicalProcessorCount(), 64u);
  EXPECT_EQ(win32().calls, Calls{"GetSystemInfo()"});
}

TEST_F(PlatformCalls, MemoryStatusComesFromOneQuery) {
  win32().memory.ullTotalPhys = 32 * kGiB;
  win32().memory.ullAvailPhys = 20 * kGiB;
  win32().memory.ullTotalPageFile = 48 * kGiB;
  win32().memory.ullAvailPageFile = 36 * kGiB;
  const auto status = QueryMemoryStatus();
  ASSERT_TRUE(status);
  EXPECT_EQ(status->total_physical, 32 * kGiB);
  EXPECT_EQ(status->available_physical, 20 * kGiB);
  EXPECT_EQ(status->committable, 36 * kGiB);
  EXPECT_EQ(win32().calls, Calls{"GlobalMemoryStatusEx(64)"});
}

TEST_F(PlatformCalls, TotalMemoryComesFromOneQuery) {
  win32().memory.ullTotalPhys = 32 * kGiB;
  EXPECT_EQ(QueryTotalPhysicalMemory(), 32 * kGiB);
  EXPECT_EQ(win32().calls, Calls{"GlobalMemoryStatusEx(64)"});
}

TEST_F(PlatformCalls, MemoryQueryThatFailsTellsNothing) {
  win32().memory_succeeds = false;
  EXPECT_FALSE(QueryMemoryStatus());
  EXPECT_FALSE(QueryTotalPhysicalMemory());
}

TEST_F(PlatformCalls, TimesAskForQueryInformationAlone) {
  EXPECT_TRUE(Process::Open(kPid, ProcessRights::kTimes));
  EXPECT_EQ(win32().calls, (Calls{"OpenProcess(0x400, 0, 1234)", "CloseHandle()"}));
}

TEST_F(PlatformCalls, MemoryAsksForQueryInformationAndReading) {
  EXPECT_TRUE(Process::Open(kPid, ProcessRights::kMemory));
  EXPECT_EQ(win32().calls, (Calls{"OpenProcess(0x410, 0, 1234)", "CloseHandle()"}));
}

TEST_F(PlatformCalls, RefusedProcessIsNotClosed) {
  win32().open_succeeds = false;
  EXPECT_FALSE(Process::Open(kPid, ProcessRights::kTimes));
  EXPECT_EQ(win32().calls, Calls{"OpenProcess(0x400, 0, 1234)"});
}

TEST_F(PlatformCalls, MovedProcessIsClosedOnce) {
  {
    auto first = Process::Open(kPid, ProcessRights::kTimes);
    ASSERT_TRUE(first);
    const Process second = std::move(*first);
    EXPECT_TRUE(second.Times());
  }
  EXPECT_EQ(win32().calls,
            (Calls{"OpenProcess(0x400, 0, 1234)", "GetProcessTimes()", "CloseHandle()"}));
}

TEST_F(PlatformCalls, TimesJoinTheirHalves) {
  win32().kernel = {0xFFFFFFFF, 0x00000001};
  win32().user = {0x80000000, 0x7FFFFFFF};
  const auto process = Process::Open(kPid, ProcessRights::kTimes);
  ASSERT_TRUE(process);
  const auto times = process->Times();
  ASSERT_TRUE(times);
  EXPECT_EQ(times->kernel, 0x00000001'FFFFFFFFu);
  EXPECT_EQ(times->user, 0x7FFFFFFF'80000000u);
}

TEST_F(PlatformCalls, TimesThatFailTellNothing) {
  win32().times_successes = 0;
  const auto process = Process::Open(kPid, ProcessRights::kTimes);
  ASSERT_TRUE(process);
  EXPECT_FALSE(process->Times());
}

TEST_F(PlatformCalls, ResidentBytesAreTheWorkingSet) {
  win32().working_set = 5 * kGiB;
  const auto process = Process::Open(kPid, ProcessRights::kMemory);
  ASSERT_TRUE(process);
  EXPECT_EQ(process->ResidentBytes(), 5 * kGiB);
  EXPECT_EQ(win32().calls, (Calls{"OpenProcess(0x410, 0, 1234)", "K32GetProcessMemoryInfo(72)"}));
}

TEST_F(PlatformCalls, CountersThatFailTellNothing) {
  win32().working_set = 5 * kGiB;
  win32().counters_succeed = false;
  const auto process = Process::Open(kPid, ProcessRights::kMemory);
  ASSERT_TRUE(process);
  EXPECT_FALSE(process->ResidentBytes());
}

// What one call of each meter costs: no system call but these.

TEST_F(PlatformCalls, CpuMeterOpensSamplesTwiceCountsAndCloses) {
  win32().system.dwNumberOfProcessors = 8;
  EXPECT_EQ(kestrel_utils::GetCpuUsage(kPid, 1), 0.0f);
  EXPECT_EQ(win32().calls, (Calls{"OpenProcess(0x400, 0, 1234)", "GetProcessTimes()",
                                  "GetProcessTimes()", "GetSystemInfo()", "CloseHandle()"}));
}

TEST_F(PlatformCalls, CpuMeterClosesAfterEachSampleThatFails) {
  win32().times_successes = 0;
  EXPECT_EQ(kestrel_utils::GetCpuUsage(kPid, 0), -1.0f);
  EXPECT_EQ(win32().calls,
            (Calls{"OpenProcess(0x400, 0, 1234)", "GetProcessTimes()", "CloseHandle()"}));
  win32() = tests::Win32{};
  win32().times_successes = 1;
  EXPECT_EQ(kestrel_utils::GetCpuUsage(kPid, 0), -1.0f);
  EXPECT_EQ(win32().calls, (Calls{"OpenProcess(0x400, 0, 1234)", "GetProcessTimes()",
                                  "GetProcessTimes()", "CloseHandle()"}));
}

TEST_F(PlatformCalls, ProcessMemoryMeterOpensAsksAndCloses) {
  win32().working_set = 5 * kGiB;
  EXPECT_EQ(kestrel_utils::MemoryObserver::getProcessUsedRAM(kPid), 5LL << 30);
  EXPECT_EQ(win32().calls,
            (Calls{"OpenProcess(0x410, 0, 1234)", "K32GetProcessMemoryInfo(72)", "CloseHandle()"}));
}

TEST_F(PlatformCalls, EveryRamMeterMakesOneQueryOfItsOwn) {
  const kestrel_utils::MemoryObserver observer;
  win32().memory.ullTotalPhys = 32 * kGiB;
  win32().memory.ullAvailPhys = 20 * kGiB;
  EXPECT_EQ(kestrel_utils::MemoryObserver::getMachinePhysicalRAM(), 32LL << 30);
  EXPECT_EQ(observer.getAvailableRAM(), 20LL << 30);
  EXPECT_EQ(observer.getUsedRAM(), 12LL << 30);
  EXPECT_FALSE(observer.willFailToAllocate(1));
  EXPECT_EQ(win32().calls, Calls(4, "GlobalMemoryStatusEx(64)"));
}

}  // namespace

}  // namespace kestrel::platform

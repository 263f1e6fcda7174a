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

// The native layer over recorded system functions: which functions it calls, with which arguments,
// and what it returns for their results. The contract suite runs over the real functions.

namespace kestrel::tests {

namespace {

using kestrel_utils::GetCpuUsage;
using kestrel_utils::MemoryObserver;
using platform::GroupDirectory;
using platform::LogicalProcessorCount;
using platform::MemoryLimit;
using platform::Process;
using platform::ProcessorArchitecture;
using platform::ProcessRights;
using platform::QueryMemoryLimit;
using platform::QueryMemoryStatus;
using platform::QueryTotalPhysicalMemory;

using Calls = std::vector<std::string>;

constexpr int kPid = 1234;
constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;

class Win32CallsTest : public testing::Test {
 protected:
  Win32CallsTest() { win32() = Win32{}; }

  static Win32& win32() { return RecordedWin32(); }
};

TEST_F(Win32CallsTest, ArchitectureIsReadFromSystemInfo) {
  for (const int code : {0, 5, 6, 9, 12, 0xFFFF}) {
    win32().system.wProcessorArchitecture = static_cast<WORD>(code);
    EXPECT_EQ(ProcessorArchitecture(), code);
  }
  EXPECT_EQ(win32().calls, Calls(6, "GetSystemInfo()"));
}

TEST_F(Win32CallsTest, ProcessorCountIsReadFromSystemInfo) {
  win32().system.dwNumberOfProcessors = 64;
  EXPECT_EQ(LogicalProcessorCount(), 64U);
  EXPECT_EQ(win32().calls, Calls{"GetSystemInfo()"});
}

TEST_F(Win32CallsTest, MemoryStatusComesFromOneQuery) {
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

TEST_F(Win32CallsTest, MemoryLimitIsAlwaysTheMachines) {
  win32().memory.ullTotalPhys = 32 * kGiB;
  win32().memory.ullAvailPhys = 20 * kGiB;
  win32().memory.ullAvailPageFile = 4 * kGiB;
  GroupDirectory directory;
  directory.fill('x');
  const auto status = QueryMemoryLimit(directory);
  ASSERT_TRUE(status);
  EXPECT_EQ(status->available_physical, 20 * kGiB);
  EXPECT_EQ(status->committable, 4 * kGiB);
  EXPECT_EQ(status->limit, MemoryLimit::kMachine);
  EXPECT_EQ(directory.front(), '\0');
  EXPECT_EQ(win32().calls, Calls{"GlobalMemoryStatusEx(64)"});
}

TEST_F(Win32CallsTest, TotalMemoryComesFromOneQuery) {
  win32().memory.ullTotalPhys = 32 * kGiB;
  EXPECT_EQ(QueryTotalPhysicalMemory(), 32 * kGiB);
  EXPECT_EQ(win32().calls, Calls{"GlobalMemoryStatusEx(64)"});
}

TEST_F(Win32CallsTest, FailedMemoryQueryReturnsNoFigures) {
  win32().memory_succeeds = false;
  EXPECT_FALSE(QueryMemoryStatus());
  GroupDirectory directory;
  EXPECT_FALSE(QueryMemoryLimit(directory));
  EXPECT_EQ(directory.front(), '\0');
  EXPECT_FALSE(QueryTotalPhysicalMemory());
}

TEST_F(Win32CallsTest, TimesAskForQueryInformationAlone) {
  EXPECT_TRUE(Process::Open(kPid, ProcessRights::kTimes));
  EXPECT_EQ(win32().calls, (Calls{"OpenProcess(0x400, 0, 1234)", "CloseHandle()"}));
}

TEST_F(Win32CallsTest, MemoryAsksForQueryInformationAndReading) {
  EXPECT_TRUE(Process::Open(kPid, ProcessRights::kMemory));
  EXPECT_EQ(win32().calls, (Calls{"OpenProcess(0x410, 0, 1234)", "CloseHandle()"}));
}

TEST_F(Win32CallsTest, RefusedProcessIsNotClosed) {
  win32().open_succeeds = false;
  EXPECT_FALSE(Process::Open(kPid, ProcessRights::kTimes));
  EXPECT_EQ(win32().calls, Calls{"OpenProcess(0x400, 0, 1234)"});
}

TEST_F(Win32CallsTest, MovedProcessIsClosedOnce) {
  {
    auto first = Process::Open(kPid, ProcessRights::kTimes);
    ASSERT_TRUE(first);
    const Process second = std::move(*first);
    EXPECT_TRUE(second.Times());
  }
  EXPECT_EQ(win32().calls,
            (Calls{"OpenProcess(0x400, 0, 1234)", "GetProcessTimes()", "CloseHandle()"}));
}

TEST_F(Win32CallsTest, TimesJoinTheirHalves) {
  win32().kernel = {0xFFFFFFFF, 0x00000001};
  win32().user = {0x80000000, 0x7FFFFFFF};
  const auto process = Process::Open(kPid, ProcessRights::kTimes);
  ASSERT_TRUE(process);
  const auto times = process->Times();
  ASSERT_TRUE(times);
  EXPECT_EQ(times->kernel, 0x00000001'FFFFFFFFU);
  EXPECT_EQ(times->user, 0x7FFFFFFF'80000000U);
}

TEST_F(Win32CallsTest, FailedTimesReturnNoFigures) {
  win32().times_successes = 0;
  const auto process = Process::Open(kPid, ProcessRights::kTimes);
  ASSERT_TRUE(process);
  EXPECT_FALSE(process->Times());
}

TEST_F(Win32CallsTest, ResidentBytesAreTheWorkingSet) {
  win32().working_set = 5 * kGiB;
  const auto process = Process::Open(kPid, ProcessRights::kMemory);
  ASSERT_TRUE(process);
  EXPECT_EQ(process->ResidentBytes(), 5 * kGiB);
  EXPECT_EQ(win32().calls, (Calls{"OpenProcess(0x410, 0, 1234)", "K32GetProcessMemoryInfo(72)"}));
}

TEST_F(Win32CallsTest, FailedCountersReturnNoFigures) {
  win32().working_set = 5 * kGiB;
  win32().counters_succeed = false;
  const auto process = Process::Open(kPid, ProcessRights::kMemory);
  ASSERT_TRUE(process);
  EXPECT_FALSE(process->ResidentBytes());
}

// The system calls of one call of each meter.

TEST_F(Win32CallsTest, CpuMeterOpensSamplesTwiceCountsAndCloses) {
  win32().system.dwNumberOfProcessors = 8;
  EXPECT_EQ(GetCpuUsage(kPid, 1), 0.0F);
  EXPECT_EQ(win32().calls, (Calls{"OpenProcess(0x400, 0, 1234)", "GetProcessTimes()",
                                  "GetProcessTimes()", "GetSystemInfo()", "CloseHandle()"}));
}

TEST_F(Win32CallsTest, CpuMeterClosesAfterEachFailedSample) {
  win32().times_successes = 0;
  EXPECT_EQ(GetCpuUsage(kPid, 0), -1.0F);
  EXPECT_EQ(win32().calls,
            (Calls{"OpenProcess(0x400, 0, 1234)", "GetProcessTimes()", "CloseHandle()"}));
  win32() = Win32{};
  win32().times_successes = 1;
  EXPECT_EQ(GetCpuUsage(kPid, 0), -1.0F);
  EXPECT_EQ(win32().calls, (Calls{"OpenProcess(0x400, 0, 1234)", "GetProcessTimes()",
                                  "GetProcessTimes()", "CloseHandle()"}));
}

TEST_F(Win32CallsTest, ProcessMemoryMeterOpensReadsAndCloses) {
  win32().working_set = 5 * kGiB;
  EXPECT_EQ(MemoryObserver::getProcessUsedRAM(kPid), 5LL << 30);
  EXPECT_EQ(win32().calls,
            (Calls{"OpenProcess(0x410, 0, 1234)", "K32GetProcessMemoryInfo(72)", "CloseHandle()"}));
}

TEST_F(Win32CallsTest, EveryRamMeterMakesOneQueryOfItsOwn) {
  const MemoryObserver observer;
  win32().memory.ullTotalPhys = 32 * kGiB;
  win32().memory.ullAvailPhys = 20 * kGiB;
  EXPECT_EQ(MemoryObserver::getMachinePhysicalRAM(), 32LL << 30);
  EXPECT_EQ(observer.getAvailableRAM(), 20LL << 30);
  EXPECT_EQ(observer.getUsedRAM(), 12LL << 30);
  EXPECT_FALSE(observer.willFailToAllocate(1));
  EXPECT_EQ(win32().calls, Calls(4, "GlobalMemoryStatusEx(64)"));
}

}  // namespace

}  // namespace kestrel::tests

// Every kind of process that Windows has, measured by the native layer and the meters.

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "platform/platform.h"
#include "tests/fakes/cerr_recorder.h"
#include "tests/platform/windows/child_process.h"
#include "utils/cpu_usage.h"
#include "utils/memory_observer.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::GetCpuUsage;
using kestrel_utils::MemoryObserver;
using platform::Process;
using platform::ProcessRights;

bool Opens(int pid, ProcessRights rights) { return Process::Open(pid, rights).has_value(); }

std::string OpenFailure(int pid) {
  return "Failed to open process with PID " + std::to_string(pid) + "\n";
}

// Not that its usage is 0: Wine returns the caller's own times for every process.
TEST(WindowsProcessTest, ChildIsMeasured) {
  const ChildProcess child;
  const auto process = Process::Open(child.pid(), ProcessRights::kMemory);
  ASSERT_TRUE(process);
  EXPECT_TRUE(process->Times());
  EXPECT_GT(process->ResidentBytes().value_or(0), 0U);
  EXPECT_GE(GetCpuUsage(child.pid(), 10), 0.0F);
}

// Without a limit of time: a busy machine may take long to give this process its share.
TEST(WindowsProcessTest, BusyProcessHasUsageAboveZero) {
  std::atomic<bool> done = false;
  std::thread worker([&done] {
    while (!done) {
    }
  });
  float usage = 0.0F;
  while (usage == 0.0F) {
    usage = GetCpuUsage(static_cast<int>(GetCurrentProcessId()), 100);
  }
  done = true;
  worker.join();
  EXPECT_GT(usage, 0.0F);
}

TEST(WindowsProcessTest, ThreadIdDoesNotOpen) {
  EXPECT_FALSE(Opens(static_cast<int>(GetCurrentThreadId()), ProcessRights::kTimes));
  EXPECT_FALSE(Opens(static_cast<int>(GetCurrentThreadId()), ProcessRights::kMemory));
}

TEST(WindowsProcessTest, EndedProcessDoesNotOpen) {
  ChildProcess child;
  child.EndForGood();
  EXPECT_FALSE(Opens(child.pid(), ProcessRights::kTimes));
  EXPECT_FALSE(Opens(child.pid(), ProcessRights::kMemory));
}

TEST(WindowsProcessTest, ProcessEndedWhileOpenKeepsItsTimes) {
  ChildProcess child;
  const auto process = Process::Open(child.pid(), ProcessRights::kTimes);
  ASSERT_TRUE(process);
  child.End();
  EXPECT_TRUE(process->Times());
}

TEST(WindowsProcessTest, PidIsNotReusedWhileHandleIsOpen) {
  ChildProcess first;
  const auto process = Process::Open(first.pid(), ProcessRights::kTimes);
  ASSERT_TRUE(process);
  first.End();
  for (int i = 0; i < 20; ++i) {
    const ChildProcess next;
    EXPECT_NE(next.pid(), first.pid());
  }
}

// The process grants these rights alone, so a request for any other is refused. Windows adds the
// limited query to every request for the full one.
constexpr DWORD kQuery = PROCESS_QUERY_INFORMATION | PROCESS_QUERY_LIMITED_INFORMATION;

TEST(WindowsProcessTest, TimesNeedOnlyQueryInformation) {
  const ChildProcess child(kQuery);
  EXPECT_TRUE(Opens(child.pid(), ProcessRights::kTimes));
  EXPECT_FALSE(Opens(child.pid(), ProcessRights::kMemory));
}

TEST(WindowsProcessTest, MemoryNeedsOnlyQueryInformationAndReading) {
  const ChildProcess child(kQuery | PROCESS_VM_READ);
  EXPECT_TRUE(Opens(child.pid(), ProcessRights::kMemory));
}

TEST(WindowsProcessTest, RefusedProcessIsReported) {
  const ChildProcess child(PROCESS_VM_READ);
  const CerrRecorder cerr;
  EXPECT_EQ(GetCpuUsage(child.pid(), 60'000), -1.0F);  // without a sleep
  EXPECT_EQ(MemoryObserver::getProcessUsedRAM(child.pid()), -1);
  EXPECT_EQ(cerr.text(), OpenFailure(child.pid()) + OpenFailure(child.pid()));
}

TEST(WindowsProcessTest, EndedProcessIsReported) {
  ChildProcess child;
  child.EndForGood();
  const CerrRecorder cerr;
  EXPECT_EQ(GetCpuUsage(child.pid(), 60'000), -1.0F);
  EXPECT_EQ(MemoryObserver::getProcessUsedRAM(child.pid()), -1);
  EXPECT_EQ(cerr.text(), OpenFailure(child.pid()) + OpenFailure(child.pid()));
}

// The second sample succeeds, unlike on Linux: the handle keeps the final times. On a busy machine
// the child may have ended before the first one; then another child is measured.
TEST(WindowsProcessTest, ProcessEndedBetweenTheSamplesIsMeasured) {
  float usage = -1.0F;
  std::string text;
  std::string too_late;
  do {
    ChildProcess child;
    std::thread end([&child] {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      child.End();
    });
    const CerrRecorder cerr;
    usage = GetCpuUsage(child.pid(), 300);
    end.join();
    text = cerr.text();
    too_late = OpenFailure(child.pid());
  } while (text == too_late);
  EXPECT_GE(usage, 0.0F);
  EXPECT_EQ(text, "");
}

}  // namespace
}  // namespace kestrel::tests

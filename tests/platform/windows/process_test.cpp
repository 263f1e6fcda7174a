// Processes of every kind that Windows has, seen through the seam's native layer and the meters.

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

namespace kestrel::platform {
namespace {

using kestrel_utils::GetCpuUsage;
using kestrel_utils::MemoryObserver;
using tests::ChildProcess;

bool Opens(int pid, ProcessRights rights) { return Process::Open(pid, rights).has_value(); }

std::string OpenFailure(int pid) {
  return "Failed to open process with PID " + std::to_string(pid) + "\n";
}

// Not that it uses nothing: Wine tells the caller's own times, whatever process it is asked for.
TEST(WindowsProcessTest, AChildIsMeasured) {
  const ChildProcess child;
  const auto process = Process::Open(child.pid(), ProcessRights::kMemory);
  ASSERT_TRUE(process);
  EXPECT_TRUE(process->Times());
  EXPECT_GT(process->ResidentBytes().value_or(0), 0U);
  EXPECT_GE(GetCpuUsage(child.pid(), 10), 0.0F);
}

// Without a limit of time: a busy machine may take long to give this process its share.
TEST(WindowsProcessTest, WorkOfThisProcessShowsInItsUsage) {
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

TEST(WindowsProcessTest, AThreadsIdIsNoProcess) {
  EXPECT_FALSE(Opens(static_cast<int>(GetCurrentThreadId()), ProcessRights::kTimes));
  EXPECT_FALSE(Opens(static_cast<int>(GetCurrentThreadId()), ProcessRights::kMemory));
}

TEST(WindowsProcessTest, AnEndedProcessDoesNotOpen) {
  ChildProcess child;
  child.EndForGood();
  EXPECT_FALSE(Opens(child.pid(), ProcessRights::kTimes));
  EXPECT_FALSE(Opens(child.pid(), ProcessRights::kMemory));
}

TEST(WindowsProcessTest, AProcessThatEndsWhileOpenKeepsItsTimes) {
  ChildProcess child;
  const auto process = Process::Open(child.pid(), ProcessRights::kTimes);
  ASSERT_TRUE(process);
  child.End();
  EXPECT_TRUE(process->Times());
}

TEST(WindowsProcessTest, AnOpenHandleKeepsThePidFromBeingGivenAgain) {
  ChildProcess first;
  const auto process = Process::Open(first.pid(), ProcessRights::kTimes);
  ASSERT_TRUE(process);
  first.End();
  for (int i = 0; i < 20; ++i) {
    const ChildProcess next;
    EXPECT_NE(next.pid(), first.pid());
  }
}

// The rights that the process grants tell what is asked for: with one less, it is refused. The
// limited query comes with the full one, unasked.
constexpr DWORD kQuery = PROCESS_QUERY_INFORMATION | PROCESS_QUERY_LIMITED_INFORMATION;

TEST(WindowsProcessTest, TimesNeedQueryInformationAndNoMore) {
  const ChildProcess child(kQuery);
  EXPECT_TRUE(Opens(child.pid(), ProcessRights::kTimes));
  EXPECT_FALSE(Opens(child.pid(), ProcessRights::kMemory));
}

TEST(WindowsProcessTest, MemoryNeedsReadingTooAndNoMore) {
  const ChildProcess child(kQuery | PROCESS_VM_READ);
  EXPECT_TRUE(Opens(child.pid(), ProcessRights::kMemory));
}

TEST(WindowsProcessTest, ARefusedProcessIsReported) {
  const ChildProcess child(PROCESS_VM_READ);
  const tests::CerrRecorder cerr;
  EXPECT_EQ(GetCpuUsage(child.pid(), 60'000), -1.0F);  // and does not sleep
  EXPECT_EQ(MemoryObserver::getProcessUsedRAM(child.pid()), -1);
  EXPECT_EQ(cerr.text(), OpenFailure(child.pid()) + OpenFailure(child.pid()));
}

TEST(WindowsProcessTest, AnEndedProcessIsReported) {
  ChildProcess child;
  child.EndForGood();
  const tests::CerrRecorder cerr;
  EXPECT_EQ(GetCpuUsage(child.pid(), 60'000), -1.0F);
  EXPECT_EQ(MemoryObserver::getProcessUsedRAM(child.pid()), -1);
  EXPECT_EQ(cerr.text(), OpenFailure(child.pid()) + OpenFailure(child.pid()));
}

// Unlike on Linux, the second sample succeeds: the handle keeps what the process had used.
TEST(WindowsProcessTest, AProcessThatEndsBetweenTheSamplesIsMeasured) {
  ChildProcess child;
  std::thread end([&child] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    child.End();
  });
  const tests::CerrRecorder cerr;
  EXPECT_GE(GetCpuUsage(child.pid(), 300), 0.0F);
  end.join();
  EXPECT_EQ(cerr.text(), "");
}

}  // namespace
}  // namespace kestrel::platform

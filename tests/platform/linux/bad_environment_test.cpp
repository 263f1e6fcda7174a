// The meters where Linux denies what they need: their results and messages.

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <functional>
#include <iostream>
#include <limits>
#include <stdexcept>
#include <string>

#include "tests/platform/linux/child_process.h"
#include "utils/cpu_usage.h"
#include "utils/memory_observer.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::GetCpuUsage;
using kestrel_utils::MemoryObserver;

void Require(bool holds, const char* what) {
  if (!holds) {
    throw std::runtime_error(what);
  }
}

void RequireNoProcessMeters(int pid) {
  Require(GetCpuUsage(pid, 60'000) == -1.0F, "CPU usage was measured");  // without a sleep
  Require(MemoryObserver::getProcessUsedRAM(pid) == -1, "process memory was measured");
}

std::string OpenFailures(int pid) {
  const std::string line = "Failed to open process with PID " + std::to_string(pid) + "\n";
  return line + line;
}

class BadEnvironmentNeedsNamespacesTest : public NamespacesTest {};

// The clock of the own process needs no "/proc".
TEST_F(BadEnvironmentNeedsNamespacesTest, WithoutProcOnlyTheTotalAndTheOwnCpuUsageAreReported) {
  const Outcome outcome = RunInOwnNamespaces([] {
    Require(mount("none", "/proc", "tmpfs", 0, nullptr) == 0, "mount");
    Require(GetCpuUsage(1, 0) >= 0.0F, "own CPU usage was not measured");
    RequireNoProcessMeters(2);
    const MemoryObserver observer;
    Require(observer.getAvailableRAM() == 0, "available RAM was reported");
    Require(observer.getUsedRAM() == 0, "used RAM was reported");
    Require(MemoryObserver::getMachinePhysicalRAM() > 0, "physical RAM was not reported");
    Require(!observer.willFailToAllocate(-1), "a failure was predicted");
  });
  EXPECT_TRUE(outcome.ran);
  EXPECT_EQ(outcome.diagnostics, OpenFailures(2) + "Failed to get global memory status.\n");
}

// Runs `body` in a child of process 1, as user nobody. The groups are dropped too: root's group may
// see hidden processes.
void RunAsNobody(const std::function<void()>& body) {
  const Outcome outcome = RunApart([&body] {
    Require(setgroups(0, nullptr) == 0, "setgroups");
    Require(setresgid(65534, 65534, 65534) == 0, "setresgid");
    Require(setresuid(65534, 65534, 65534) == 0, "setresuid");
    body();
  });
  std::cerr << outcome.diagnostics;
  Require(outcome.ran, "the body failed");
}

class OtherUserNeedsRootAndNamespacesTest : public NamespacesTest {
 protected:
  void SetUp() override {
    if (geteuid() != 0) {
      GTEST_SKIP() << "needs root, to have a process of another user";
    }
    NamespacesTest::SetUp();
  }
};

TEST_F(OtherUserNeedsRootAndNamespacesTest, HiddenProcessesDoNotOpen) {
  for (const char* const hidepid : {"hidepid=1", "hidepid=2"}) {
    SCOPED_TRACE(hidepid);
    const Outcome outcome = RunInOwnNamespaces([hidepid] {
      Require(mount("proc", "/proc", "proc", 0, hidepid) == 0, "mount");
      RunAsNobody([] { RequireNoProcessMeters(1); });
    });
    EXPECT_TRUE(outcome.ran);
    EXPECT_EQ(outcome.diagnostics, OpenFailures(1));
  }
}

TEST_F(OtherUserNeedsRootAndNamespacesTest, VisibleProcessesAreMeasured) {
  const Outcome outcome = RunInOwnNamespaces([] {
    RunAsNobody([] {
      Require(GetCpuUsage(1, 0) >= 0.0F, "CPU usage was not measured");
      Require(MemoryObserver::getProcessUsedRAM(1) > 0, "process memory was not measured");
    });
  });
  EXPECT_TRUE(outcome.ran);
  EXPECT_EQ(outcome.diagnostics, "");
}

TEST(BadEnvironmentTest, WithoutDescriptorsOnlyTheTotalIsReported) {
  const Outcome outcome = RunApart([] {
    const rlimit none{0, 0};
    Require(setrlimit(RLIMIT_NOFILE, &none) == 0, "setrlimit");
    RequireNoProcessMeters(getppid());
    Require(GetCpuUsage(getpid(), 0) == -1.0F, "own CPU usage was measured");
    const MemoryObserver observer;
    Require(observer.getAvailableRAM() == 0, "available RAM was reported");
    Require(observer.getUsedRAM() == 0, "used RAM was reported");
    Require(MemoryObserver::getMachinePhysicalRAM() > 0, "physical RAM was not reported");
    Require(!observer.willFailToAllocate(-1), "a failure was predicted");
  });
  EXPECT_TRUE(outcome.ran);
  const std::string opened = "Failed to open process with PID ";
  EXPECT_EQ(outcome.diagnostics.rfind(opened, 0), 0U) << outcome.diagnostics;
  EXPECT_NE(outcome.diagnostics.find("\nFailed to get global memory status.\n"), std::string::npos);
}

// The open process takes it, so the processors cannot be counted. The own process takes none.
TEST(BadEnvironmentTest, WithOneDescriptorOnlyTheOwnCpuUsageIsReported) {
  const Outcome outcome = RunApart([] {
    LeaveDescriptors(1);
    Require(GetCpuUsage(getppid(), 0) == -1.0F, "CPU usage was measured");
    Require(GetCpuUsage(getpid(), 0) >= 0.0F, "own CPU usage was not measured");
  });
  EXPECT_TRUE(outcome.ran);
  EXPECT_EQ(outcome.diagnostics, "");
}

TEST(BadEnvironmentTest, DeadPidIsReported) {
  ChildProcess child([] {});
  child.KillAndReap();
  const int pid = child.pid();
  const Outcome outcome = RunApart([pid] { RequireNoProcessMeters(pid); });
  EXPECT_TRUE(outcome.ran);
  EXPECT_EQ(outcome.diagnostics, OpenFailures(pid));
}

TEST(BadEnvironmentTest, LargestPidIsReported) {
  const int pid = std::numeric_limits<int>::max();
  const Outcome outcome = RunApart([pid] { RequireNoProcessMeters(pid); });
  EXPECT_TRUE(outcome.ran);
  EXPECT_EQ(outcome.diagnostics, OpenFailures(pid));
}

TEST(BadEnvironmentTest, ClosedStandardErrorChangesNoResult) {
  const Outcome outcome = RunApart([] {
    close(STDERR_FILENO);
    RequireNoProcessMeters(std::numeric_limits<int>::max());
  });
  EXPECT_TRUE(outcome.ran);
}

}  // namespace
}  // namespace kestrel::tests

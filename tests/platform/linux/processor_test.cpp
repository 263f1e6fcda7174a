#include <cpuid.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

#include <cerrno>
#include <cstdint>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>

#include "platform/platform.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/machine_tree.h"

namespace kestrel::tests {
namespace {

using platform::LogicalProcessorCount;

// Hides what is mounted at the folder. In a chroot, "/sys" may be an empty folder.
void Cover(const char* folder) {
  if (mount(nullptr, folder, nullptr, MS_PRIVATE, nullptr) != 0) {
    if (errno == EINVAL) {
      return;  // not a mount point
    }
    throw std::runtime_error("mount private");
  }
  if (mount("none", folder, "tmpfs", 0, nullptr) != 0) {
    throw std::runtime_error("mount");
  }
}

void RequireCount(const std::optional<std::uint32_t>& expected) {
  if (LogicalProcessorCount() != expected) {
    throw std::runtime_error("another number of processors");
  }
}

TEST(LinuxProcessorTest, RegistersAreThoseOfTheLeaf) {
  for (const std::uint32_t leaf : {0U, 7U, 0x80000002U}) {
    std::uint32_t eax = 0;
    std::uint32_t ebx = 0;
    std::uint32_t ecx = 0;
    std::uint32_t edx = 0;
    __cpuid_count(leaf, 0, eax, ebx, ecx, edx);
    const platform::CpuidRegisters registers = platform::Cpuid(leaf, 0);
    EXPECT_EQ(registers.eax, eax) << leaf;
    EXPECT_EQ(registers.ebx, ebx) << leaf;
    EXPECT_EQ(registers.ecx, ecx) << leaf;
    EXPECT_EQ(registers.edx, edx) << leaf;
  }
}

// The kernel lists the processors that are online there.
TEST(LinuxProcessorTest, CountIsThatOfTheProcessorsInCpuinfo) {
  std::ifstream cpuinfo("/proc/cpuinfo");
  std::uint32_t processors = 0;
  for (std::string line; std::getline(cpuinfo, line);) {
    processors += line.rfind("processor\t", 0) == 0 ? 1 : 0;
  }
  EXPECT_EQ(LogicalProcessorCount(), processors);
}

TEST(LinuxProcessorTest, AffinityOfTheThreadDoesNotChangeTheCount) {
  const auto count = LogicalProcessorCount();
  const Outcome outcome = RunApart([&count] {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    if (sched_setaffinity(0, sizeof(one), &one) != 0) {
      throw std::runtime_error("sched_setaffinity");
    }
    RequireCount(count);
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

class LinuxProcessorNeedsNamespacesTest : public NamespacesTest {};

TEST_F(LinuxProcessorNeedsNamespacesTest, WithoutSysTheCountIsTheSame) {
  const auto count = LogicalProcessorCount();
  ASSERT_TRUE(count);
  const Outcome outcome = RunInOwnNamespaces([&count] {
    Cover("/sys");
    RequireCount(count);
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

TEST_F(LinuxProcessorNeedsNamespacesTest, WithoutProcTheCountIsTheSame) {
  const auto count = LogicalProcessorCount();
  ASSERT_TRUE(count);
  const Outcome outcome = RunInOwnNamespaces([&count] {
    Cover("/proc");
    RequireCount(count);
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

// Counts without "/sys", and with that text in /proc/stat.
Outcome CountInProcStat(const std::string& text, const std::optional<std::uint32_t>& expected) {
  const MachineTree tree;
  tree.Write("/stat", text);
  const std::string file = tree.root() + "/stat";
  return RunInOwnNamespaces([&file, &expected] {
    Cover("/sys");
    if (mount(file.c_str(), "/proc/stat", nullptr, MS_BIND, nullptr) != 0) {
      throw std::runtime_error("mount /proc/stat");
    }
    RequireCount(expected);
  });
}

TEST_F(LinuxProcessorNeedsNamespacesTest, ProcessorsOfProcStatAreCounted) {
  const Outcome outcome = CountInProcStat("cpu  3 2\ncpu0 1 1\ncpu12 2 1\nintr 1 2\n", 2);
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

TEST_F(LinuxProcessorNeedsNamespacesTest, OneProcessorOfProcStatIsCounted) {
  const Outcome outcome = CountInProcStat("cpu  3 2\ncpu0 3 2\nintr 1 2\n", 1);
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

TEST_F(LinuxProcessorNeedsNamespacesTest, ProcStatWithoutLineAfterTheProcessorsHasNoCount) {
  const Outcome outcome = CountInProcStat("cpu  3 2\ncpu0 1 1\n", std::nullopt);
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

TEST_F(LinuxProcessorNeedsNamespacesTest, ProcStatWithoutProcessorsHasNoCount) {
  const Outcome outcome = CountInProcStat("cpu  3 2\nintr 1 2\n", std::nullopt);
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

TEST_F(LinuxProcessorNeedsNamespacesTest, WithoutSysAndProcThereIsNoCount) {
  const Outcome outcome = RunInOwnNamespaces([] {
    Cover("/sys");
    Cover("/proc");
    RequireCount(std::nullopt);
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

}  // namespace
}  // namespace kestrel::tests

// Compares what `kestrel fits` says in a memory group with what the kernel does there: processes
// allocate and use 90 % or 115 % of the largest size that fits.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <string>

#include "command/exit_status.h"
#include "tests/platform/linux/control_group.h"

namespace kestrel::tests {
namespace {

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20U;
constexpr std::uint64_t kLimit = 256 * kMiB;

// Runs a body in a process of its own, in the group if there is one, and returns its wait status.
template <typename Body>
int RunInGroup(const ControlGroup* group, const Body& body) {
  const pid_t child = fork();
  if (child == 0) {
    _exit(group == nullptr || group->Enter() ? body() : 127);
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return status;
}

// The exit status of `kestrel fits`, run in the group. Says why on standard output.
int Fits(const ControlGroup* group, std::uint64_t bytes) {
  const std::string size = std::to_string(bytes);
  const int status = RunInGroup(group, [&] {
    execl(KESTREL_PROGRAM, "kestrel", "fits", size.c_str(), nullptr);
    return 127;
  });
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Allocates the memory and writes to every page, in the group.
std::string FateOf(const ControlGroup* group, std::uint64_t bytes) {
  const int status = RunInGroup(group, [&] {
    void* const memory =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
      return 1;
    }
    for (std::uint64_t offset = 0; offset < bytes; offset += 4096) {
      static_cast<volatile char*>(memory)[offset] = 1;
    }
    return 0;
  });
  if (WIFSIGNALED(status)) {
    return WTERMSIG(status) == SIGKILL ? "killed" : "ended by another signal";
  }
  return WEXITSTATUS(status) == 0 ? "lived" : "refused";
}

// The largest size, to a mebibyte, that fits in the group.
std::uint64_t FindThreshold(const ControlGroup* group) {
  std::uint64_t fits = 0;
  std::uint64_t fails = 4 * kLimit;
  while (fails - fits > kMiB) {
    const std::uint64_t middle = fits + (fails - fits) / 2;
    (Fits(group, middle) == command::kSuccess ? fits : fails) = middle;
  }
  return fits;
}

// The name says what it needs, so that ctest's list of skipped tests gives the reason.
class FitsProofNeedsRootAndMemoryCgroupTest : public testing::Test {
 protected:
  void SetUp() override {
    const std::string obstacle = FindHierarchy(hierarchy_);
    if (!obstacle.empty()) {
      GTEST_SKIP() << obstacle;
    }
    if (Fits(nullptr, 3 * kLimit) == command::kWouldFail) {
      GTEST_SKIP() << "This machine has not enough memory free for the group's limit to matter.";
    }
  }

  Hierarchy hierarchy_;
};

TEST_F(FitsProofNeedsRootAndMemoryCgroupTest, SizeThatFitsLivesAndSizeThatFailsIsKilled) {
  ControlGroup group(hierarchy_, hierarchy_.top, "kestrel-fits-" + std::to_string(getpid()));
  group.Limit(kLimit);
  const std::uint64_t threshold = FindThreshold(&group);
  EXPECT_GT(threshold, kLimit / 10 * 8);
  EXPECT_LE(threshold, kLimit);

  const std::uint64_t less = threshold / 100 * 90;
  EXPECT_EQ(Fits(&group, less), command::kSuccess);
  EXPECT_EQ(FateOf(&group, less), "lived");

  const std::uint64_t more = threshold / 100 * 115;
  EXPECT_EQ(Fits(&group, more), command::kWouldFail);
  const std::string fate = FateOf(&group, more);
  EXPECT_TRUE(fate == "killed" || fate == "refused") << fate;
}

}  // namespace
}  // namespace kestrel::tests

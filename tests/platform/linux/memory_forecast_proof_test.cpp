// Compares the allocation forecast with what the kernel does: processes in memory groups search for
// the largest size that is not predicted to fail, then allocate and use a little less, or a little
// more.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utils/memory_observer.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/linux/control_group.h"
#include "tests/platform/linux/forecast_threshold.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::MemoryObserver;

constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;
constexpr std::uint64_t kLimit = 128 * kMebibyte;

constexpr int kLived = 0;
constexpr int kRefused = 2;
constexpr int kNotSetUp = 3;

// What a process does in its group before it searches for the threshold.
using Preparation = bool (*)();

bool DoNothing() { return true; }

struct Report {
  std::uint64_t usage = 0;  // of the group, once prepared
  std::uint64_t threshold = 0;
  std::uint64_t touched = 0;
};

int RunInGroup(const ControlGroup& group, Preparation prepare, std::uint64_t percent, int output) {
  Report report;
  if (!group.Enter() || !prepare()) {
    return kNotSetUp;
  }
  report.usage = group.Usage();
  report.threshold = FindThreshold();
  report.touched = report.threshold / 100 * percent;
  if (write(output, &report, sizeof(report)) != sizeof(report)) {
    return kNotSetUp;
  }
  return AllocateAndUse(report.touched) ? kLived : kRefused;
}

std::string Fate(int status) {
  if (WIFSIGNALED(status)) {
    return WTERMSIG(status) == SIGKILL ? "killed" : "ended by another signal";
  }
  switch (WEXITSTATUS(status)) {
    case kLived:
      return "lived";
    case kRefused:
      return "refused";
    default:
      return "not set up";
  }
}

// In the working directory; each test has its own, as several may run at the same time.
std::string FileName() {
  return std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) + ".page_cache";
}

constexpr std::uint64_t kFileSize = kLimit + 64 * kMebibyte;

// As much of the file as the reader's group has room for stays in the page cache.
bool ReadFile() {
  const int file = open(FileName().c_str(), O_RDONLY | O_CLOEXEC);
  std::vector<char> buffer(kMebibyte);
  std::uint64_t total = 0;
  ssize_t count = 0;
  while ((count = read(file, buffer.data(), buffer.size())) > 0) {
    total += static_cast<std::uint64_t>(count);
  }
  close(file);
  return total == kFileSize;
}

bool WriteFile() {
  const int file = open(FileName().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const std::vector<char> buffer(kMebibyte, 'k');
  std::uint64_t total = 0;
  ssize_t count = 0;
  while (total < kFileSize && (count = write(file, buffer.data(), buffer.size())) > 0) {
    total += static_cast<std::uint64_t>(count);
  }
  return close(file) == 0 && total == kFileSize;
}

// Pages that are already in the cache would stay charged to the group that read them first.
bool DropFileFromCache() {
  const int file = open(FileName().c_str(), O_RDONLY | O_CLOEXEC);
  const bool dropped = fdatasync(file) == 0 && posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED) == 0;
  close(file);
  return dropped;
}

bool IsOnDisk(const char* directory) {
  struct statfs system {};
  return statfs(directory, &system) == 0 && system.f_type != TMPFS_MAGIC &&
         system.f_type != RAMFS_MAGIC;
}

constexpr std::uint64_t kSharedSize = 50 * kMebibyte;

// Shared memory is in the page cache too, but cannot be reclaimed without swap.
bool FillSharedMemory() {
  void* const memory =
      mmap(nullptr, kSharedSize, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) {
    return false;
  }
  std::memset(memory, 1, kSharedSize);
  return true;
}

// The name says what it needs, so that ctest's list of skipped tests gives the reason.
class ForecastProofNeedsRootAndMemoryCgroupTest : public testing::Test {
 protected:
  void SetUp() override {
    const std::string obstacle = FindHierarchy(hierarchy_);
    if (!obstacle.empty()) {
      GTEST_SKIP() << obstacle;
    }
    if (MemoryObserver().getAvailableRAM() < static_cast<long long>(3 * kLimit)) {
      GTEST_SKIP() << "This machine has not enough memory free for the groups' limit to matter.";
    }
  }

  void TearDown() override { unlink(FileName().c_str()); }

  // Returns what became of a process in `group` that used `percent` of its threshold.
  std::string FateOf(const ControlGroup& group, Preparation prepare, std::uint64_t percent) {
    Report report;
    std::array<int, 2> channel{};
    EXPECT_EQ(pipe2(channel.data(), O_CLOEXEC), 0);
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
      _exit(RunInGroup(group, prepare, percent, channel[1]));
    }
    close(channel[1]);
    EXPECT_EQ(read(channel[0], &report, sizeof(report)), ssize_t{sizeof(report)});
    close(channel[0]);
    report_ = report;
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    std::string fate = Fate(status);
    std::printf("limit %llu, used before %llu, threshold %llu, touched %3llu %% = %llu: %s\n",
                Number(kLimit), Number(report.usage), Number(report.threshold), Number(percent),
                Number(report.touched), fate.c_str());
    return fate;
  }

  // Both sides of the threshold, each in a group of its own below `parent`.
  void ProveThreshold(const std::string& parent, bool limited, Preparation prepare) {
    for (const std::uint64_t percent : {90U, 115U}) {
      ControlGroup group(hierarchy_, parent, NewName());
      if (limited) {
        group.Limit(kLimit);
      }
      const std::string fate = FateOf(group, prepare, percent);
      if (percent < 100) {
        EXPECT_EQ(fate, "lived");
      } else {
        EXPECT_TRUE(fate == "killed" || fate == "refused") << fate;
      }
    }
  }

  std::string NewName() {
    return "kestrelcore-proof-" + std::to_string(getpid()) + "-" + std::to_string(++groups_);
  }

  static unsigned long long Number(std::uint64_t number) { return number; }

  Hierarchy hierarchy_;
  Report report_;  // of the latest process

 private:
  int groups_ = 0;
};

TEST_F(ForecastProofNeedsRootAndMemoryCgroupTest, ThresholdHoldsForLimitOnOwnGroup) {
  ProveThreshold(hierarchy_.top, /*limited=*/true, DoNothing);
  EXPECT_GT(report_.threshold, kLimit / 10 * 9);
  EXPECT_LE(report_.threshold, kLimit);
}

TEST_F(ForecastProofNeedsRootAndMemoryCgroupTest, ThresholdHoldsForLimitOnParentGroup) {
  ControlGroup parent(hierarchy_, hierarchy_.top, NewName());
  parent.Limit(kLimit);
  parent.PassDown();
  ProveThreshold(parent.directory(), /*limited=*/false, DoNothing);
  EXPECT_GT(report_.threshold, kLimit / 10 * 9);
  EXPECT_LE(report_.threshold, kLimit);
}

// The group is full of page cache, so its limit less its usage is close to 0.
TEST_F(ForecastProofNeedsRootAndMemoryCgroupTest, ThresholdHoldsInGroupFullOfCleanPageCache) {
  if (!IsOnDisk(".")) {
    GTEST_SKIP() << "The working directory is in memory: its files cannot be dropped from it.";
  }
  ASSERT_TRUE(WriteFile());
  ASSERT_TRUE(DropFileFromCache());
  ProveThreshold(hierarchy_.top, /*limited=*/true,
                 [] { return DropFileFromCache() && ReadFile(); });
  EXPECT_GT(report_.usage, kLimit / 10 * 9);
  EXPECT_GT(report_.threshold, kLimit / 10 * 9);
}

// The page cache is dirty: the kernel must write it before it can drop it.
TEST_F(ForecastProofNeedsRootAndMemoryCgroupTest, ThresholdHoldsInGroupFullOfDirtyPageCache) {
  if (!IsOnDisk(".")) {
    GTEST_SKIP() << "The working directory is in memory: its files cannot be dropped from it.";
  }
  ProveThreshold(hierarchy_.top, /*limited=*/true, WriteFile);
  EXPECT_GT(report_.usage, kLimit / 10 * 9);
  EXPECT_GT(report_.threshold, kLimit / 10 * 9);
}

TEST_F(ForecastProofNeedsRootAndMemoryCgroupTest, ThresholdHoldsNextToSharedMemory) {
  ProveThreshold(hierarchy_.top, /*limited=*/true, FillSharedMemory);
  EXPECT_LE(report_.threshold, kLimit - kSharedSize);
  EXPECT_GT(report_.threshold, (kLimit - kSharedSize) / 10 * 9);
}

// Not pthread_join, which with glibc 2.43 does not return for a thread that a system call has
// ended.
void AwaitMainThreadsEnd() {
  std::string text;
  do {
    std::ifstream stat("/proc/self/stat");
    std::getline(stat, text);
  } while (text.find(") Z ") == std::string::npos);
}

// The main thread's files in "/proc" no longer name the group then.
TEST_F(ForecastProofNeedsRootAndMemoryCgroupTest, LimitHoldsAfterMainThreadEnded) {
  ControlGroup group(hierarchy_, hierarchy_.top, NewName());
  group.Limit(kLimit);
  const pid_t child = fork();
  if (child == 0) {
    if (!group.Enter()) {
      _exit(kNotSetUp);
    }
    std::thread([] {
      AwaitMainThreadsEnd();
      _exit(FindThreshold() <= kLimit ? 0 : 1);
    }).detach();
    syscall(SYS_exit, 0);  // ends this thread alone; pthread_exit would unwind through the test
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

}  // namespace
}  // namespace kestrel::tests

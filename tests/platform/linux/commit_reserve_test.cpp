#include "platform/linux/commit_reserve.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <limits>
#include <string>

#include "tests/platform/linux/machine_tree.h"

namespace kestrel::tests {
namespace {

using platform::CommitReserve;
using platform::ParseStatusLine;
using platform::ReadCommitReserve;
using platform::ReserveFigures;

constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;
constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

TEST(CommitReserveTest, UserReserveIsAtMostAShareOfAddressSpace) {
  EXPECT_EQ(CommitReserve({1000, 0, 32 * 999, false}), 999U);
  EXPECT_EQ(CommitReserve({1000, 0, 32 * 1001, false}), 1000U);
  EXPECT_EQ(CommitReserve({1000, 0, 32 * 1001, true}), 1000U);
}

TEST(CommitReserveTest, AdminReserveIsKeptWithoutCapability) {
  EXPECT_EQ(CommitReserve({1000, 50, 32 * 1000, false}), 1050U);
  EXPECT_EQ(CommitReserve({1000, 50, 32 * 1000, true}), 1000U);
}

TEST(CommitReserveTest, SumDoesNotWrapAround) {
  EXPECT_EQ(CommitReserve({1000, kMost, kMost, false}), kMost);
}

TEST(CommitReserveTest, StatusLinesGiveAddressSpaceAndCapability) {
  ReserveFigures figures;
  ParseStatusLine("VmPeak:\t    4000 kB", figures);
  EXPECT_EQ(figures.address_space, kMost);
  ParseStatusLine("VmSize:\t    3000 kB", figures);
  EXPECT_EQ(figures.address_space, 3000U * 1024);
  ParseStatusLine("CapPrm:\t000001ffffffffff", figures);
  ParseStatusLine("CapEff:\t000001ffffdfffff", figures);
  EXPECT_FALSE(figures.has_sys_admin);
  ParseStatusLine("CapEff:\t0000000000200000", figures);
  ParseStatusLine("CapBnd:\t0000000000000000", figures);
  EXPECT_TRUE(figures.has_sys_admin);
}

TEST(CommitReserveTest, MalformedStatusLinesGiveNothing) {
  for (const std::string line :
       {"", "VmSize:", "VmSize:\t", "VmSize:\t x kB", "VmSize:\t 5", "CapEff:", "CapEff:\t",
        "CapEff:\tx", "CapEff:\t200000 ", "CapEff:\t10000000000200000"}) {
    ReserveFigures figures;
    ParseStatusLine(line, figures);
    EXPECT_EQ(figures.address_space, kMost) << line;
    EXPECT_FALSE(figures.has_sys_admin) << line;
  }
}

class ReadCommitReserveTest : public testing::Test {
 protected:
  ReadCommitReserveTest() {
    tree_.Write("/proc/sys/vm/user_reserve_kbytes", "131072\n");
    tree_.Write("/proc/sys/vm/admin_reserve_kbytes", "8192\n");
  }

  std::uint64_t Read() { return ReadCommitReserve(tree_.root(), failed_); }

  MachineTree tree_;
  bool failed_ = false;
};

TEST_F(ReadCommitReserveTest, UnknownProcessGetsWholeReserve) {
  EXPECT_EQ(Read(), 136 * kMebibyte);
  EXPECT_FALSE(failed_);
}

TEST_F(ReadCommitReserveTest, ReserveFollowsAddressSpace) {
  tree_.Write("/proc/thread-self/status", "Name:\ta\nVmSize:\t   32768 kB\nThreads:\t1\n");
  EXPECT_EQ(Read(), 9 * kMebibyte);
}

// The capability counts in the initial user namespace alone, and the file has not its inode.
TEST_F(ReadCommitReserveTest, CapabilityInOtherUserNamespaceDoesNotCount) {
  tree_.Write("/proc/thread-self/status", "VmSize:\t 32768 kB\nCapEff:\t000001ffffffffff\n");
  tree_.Write("/proc/thread-self/ns/user", "");
  EXPECT_EQ(Read(), 9 * kMebibyte);
}

// The initial user namespace has a fixed inode, and the link leads to this test's own namespace.
TEST_F(ReadCommitReserveTest, CapabilityInInitialUserNamespaceCounts) {
  tree_.Write("/proc/thread-self/status", "VmSize:\t 32768 kB\nCapEff:\t000001ffffffffff\n");
  tree_.Link("/proc/thread-self/ns/user", "/proc/thread-self/ns/user");
  struct stat own {};
  ASSERT_EQ(stat("/proc/thread-self/ns/user", &own), 0);
  EXPECT_EQ(Read(), own.st_ino == 0xEFFFFFFD ? kMebibyte : 9 * kMebibyte);
}

TEST_F(ReadCommitReserveTest, NamespaceWithoutCapabilityDoesNotCount) {
  tree_.Write("/proc/thread-self/status", "VmSize:\t 32768 kB\nCapEff:\t0000000000000000\n");
  tree_.Link("/proc/thread-self/ns/user", "/proc/thread-self/ns/user");
  EXPECT_EQ(Read(), 9 * kMebibyte);
}

TEST_F(ReadCommitReserveTest, ReserveThatDoesNotFitInBytesIsTheGreatestThatDoes) {
  tree_.Write("/proc/sys/vm/user_reserve_kbytes", "0\n");
  for (const std::string kibibytes : {"18446744073709551615\n", "18014398509481984\n"}) {
    tree_.Write("/proc/sys/vm/admin_reserve_kbytes", kibibytes);
    EXPECT_EQ(Read(), kMost - 1023) << kibibytes;
  }
}

TEST_F(ReadCommitReserveTest, MissingFilesGiveNoReserve) {
  const MachineTree empty;
  EXPECT_EQ(ReadCommitReserve(empty.root(), failed_), 0U);
  EXPECT_FALSE(failed_);
}

TEST_F(ReadCommitReserveTest, UnreadableFilesFail) {
  for (const std::string path : {"/proc/sys/vm/user_reserve_kbytes",
                                 "/proc/sys/vm/admin_reserve_kbytes", "/proc/thread-self/status"}) {
    MachineTree tree;
    tree.MakeUnreadable(path);
    bool failed = false;
    (void)ReadCommitReserve(tree.root(), failed);
    EXPECT_TRUE(failed) << path;
  }
}

}  // namespace
}  // namespace kestrel::tests

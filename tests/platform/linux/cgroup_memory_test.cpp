#include "platform/linux/cgroup_memory.h"

#include <gtest/gtest.h>
#include <linux/magic.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/faked_files.h"
#include "tests/platform/linux/machine_tree.h"

namespace kestrel::tests {
namespace {

using platform::CgroupRoom;
using platform::PathBuffer;
using platform::ReadCgroupRoom;

constexpr std::uint64_t kUnlimited = CgroupRoom::kUnlimited;
const char* const kHuge = "18446744073709551615";  // 2^64 - 1

// Texts that are not one number and a newline.
const char* const kMalformed[] = {"",     "\n",     "max\n",  "-1\n",
                                  " 5\n", "5 \n",   "5kB\n",  "0x10\n",
                                  "5",    "5\n6\n", "many\n", "18446744073709551616\n"};

class CgroupMemoryV2Test : public testing::Test {
 protected:
  void SetUp() override {
    tree_.WriteGroups("0::/a/b\n");
    tree_.WriteMounts(MountV2("/", "/cg"));
    tree_.Write("/cg/a/b/cgroup.procs", "");
  }

  void Write(const std::string& group, const std::string& file, const std::string& text) {
    tree_.Write("/cg" + group + "/memory." + file, text);
  }

  // Writes a group without reclaimable memory.
  void WriteGroup(const std::string& group, const std::string& limit, const std::string& usage) {
    Write(group, "max", limit + "\n");
    Write(group, "current", usage + "\n");
    Write(group, "stat", "inactive_file 0\nactive_file 0\nslab_reclaimable 0\n");
  }

  CgroupRoom Read() {
    const auto room = ReadCgroupRoom(tree_.root(), /*with_swap=*/true);
    EXPECT_TRUE(room);
    return room.value_or(CgroupRoom{});
  }

  MachineTree tree_;
};

TEST_F(CgroupMemoryV2Test, MissingGroupFilesGiveNoLimit) {
  const CgroupRoom room = Read();
  EXPECT_EQ(room.physical, kUnlimited);
  EXPECT_EQ(room.swap, kUnlimited);
  EXPECT_EQ(room.memory_and_swap, kUnlimited);
}

TEST_F(CgroupMemoryV2Test, MissingMountGivesNoLimit) {
  WriteGroup("/a/b", "1000", "300");
  Write("/a/b", "swap.max", "0\n");
  Write("/a/b", "swap.current", "0\n");
  tree_.WriteMounts("");
  EXPECT_EQ(Read().physical, kUnlimited);
  EXPECT_EQ(Read().swap, kUnlimited);
}

TEST_F(CgroupMemoryV2Test, MaxGivesNoLimit) {
  WriteGroup("/a/b", "max", "500");
  EXPECT_EQ(Read().physical, kUnlimited);
}

TEST_F(CgroupMemoryV2Test, RoomIsLimitLessUsage) {
  WriteGroup("/a/b", "1000", "300");
  EXPECT_EQ(Read().physical, 700U);
  EXPECT_EQ(Read().memory_and_swap, kUnlimited);
}

TEST_F(CgroupMemoryV2Test, FilePagesAndHalfOfReclaimableSlabCountAsRoom) {
  WriteGroup("/a/b", "1000", "900");
  Write("/a/b", "stat",
        "anon 200\nfile 650\nshmem 50\ninactive_anon 240\nactive_anon 10\ninactive_file 400\n"
        "active_file 200\nunevictable 0\nslab_reclaimable 30\nslab_unreclaimable 20\nslab 50\n");
  EXPECT_EQ(Read().physical, 715U);
}

TEST_F(CgroupMemoryV2Test, MissingSlabFigureCountsAsZero) {
  WriteGroup("/a/b", "1000", "900");
  Write("/a/b", "stat", "inactive_file 400\nactive_file 200\n");
  EXPECT_EQ(Read().physical, 700U);
}

TEST_F(CgroupMemoryV2Test, MoreReclaimableThanUsedFreesAllUsage) {
  WriteGroup("/a/b", "1000", "900");
  const std::string huge = std::string(kHuge) + "\n";
  const std::vector<std::string> texts = {
      "inactive_file 901\nactive_file 0\n", "inactive_file " + huge + "active_file 2\n",
      "inactive_file 0\nactive_file " + huge + "slab_reclaimable 2\n"};
  for (const std::string& text : texts) {
    Write("/a/b", "stat", text);
    EXPECT_EQ(Read().physical, 1000U) << text;
  }
}

TEST_F(CgroupMemoryV2Test, LimitBelowUsageLeavesNoRoom) {
  WriteGroup("/a/b", "1000", "1001");
  EXPECT_EQ(Read().physical, 0U);
  WriteGroup("/a/b", "0", kHuge);
  EXPECT_EQ(Read().physical, 0U);
}

TEST_F(CgroupMemoryV2Test, LimitBelowUsageLeavesWhatReclaimFreesBelowIt) {
  WriteGroup("/a/b", "1000", "1100");
  Write("/a/b", "stat", "inactive_file 300\nactive_file 0\n");
  EXPECT_EQ(Read().physical, 200U);
}

TEST_F(CgroupMemoryV2Test, SmallestRoomOfAllLevelsWins) {
  for (const std::string tightest : {"/a/b", "/a", ""}) {
    for (const std::string group : {"/a/b", "/a", ""}) {
      WriteGroup(group, group == tightest ? "1000" : "2000", "100");
    }
    EXPECT_EQ(Read().physical, 900U) << tightest;
  }
}

// The own group leaves 900.
TEST_F(CgroupMemoryV2Test, AncestorsStatisticsAreReadOnlyIfItMayBeTheTightest) {
  WriteGroup("/a/b", "1000", "100");
  WriteGroup("/a", "2000", "1101");
  Write("/a", "stat", "inactive_file 400\nactive_file 0\n");
  EXPECT_EQ(Read().physical, 900U);
  Write("/a", "stat", "inactive_file 0\nactive_file 0\n");
  EXPECT_EQ(Read().physical, 899U);
  tree_.MakeUnreadable("/cg/a/memory.stat");
  EXPECT_FALSE(ReadCgroupRoom(tree_.root(), /*with_swap=*/true));
  Write("/a", "current", "1100\n");
  EXPECT_EQ(Read().physical, 900U);
}

TEST_F(CgroupMemoryV2Test, AncestorsLimitHoldsWithoutFilesOfOwnGroup) {
  WriteGroup("/a", "1000", "100");
  EXPECT_EQ(Read().physical, 900U);
}

TEST_F(CgroupMemoryV2Test, RemovedGroupUsesAncestorsLimit) {
  tree_.WriteGroups("0::/a/b (deleted)\n");
  tree_.Write("/cg/a/cgroup.procs", "");
  WriteGroup("/a", "1000", "100");
  EXPECT_EQ(Read().physical, 900U);
}

TEST_F(CgroupMemoryV2Test, AncestorsAboveMountAreIgnored) {
  tree_.WriteMounts(MountV2("/a", "/cg/inner"));
  tree_.Write("/cg/inner/b/cgroup.procs", "");
  WriteGroup("", "1000", "100");
  EXPECT_EQ(Read().physical, kUnlimited);
  WriteGroup("/inner/b", "3000", "100");
  WriteGroup("/inner", "2000", "100");
  EXPECT_EQ(Read().physical, 1900U);
}

TEST_F(CgroupMemoryV2Test, ThrottleGivesNoLimit) {
  Write("/a/b", "high", "10\n");
  Write("/a/b", "swap.high", "10\n");
  EXPECT_EQ(Read().physical, kUnlimited);
  EXPECT_EQ(Read().swap, kUnlimited);
}

TEST_F(CgroupMemoryV2Test, MalformedFigureGivesNoLimit) {
  for (const std::string text : kMalformed) {
    for (const std::string file : {"max", "current"}) {
      WriteGroup("/a/b", "1000", "100");
      Write("/a/b", file, text);
      EXPECT_EQ(Read().physical, kUnlimited) << file << " " << text;
    }
  }
}

TEST_F(CgroupMemoryV2Test, MalformedStatisticsGiveNoLimit) {
  WriteGroup("/a/b", "1000", "100");
  for (const std::string text :
       {"", "nonsense\n", "inactive_file 1\n", "active_file 1\n",
        "inactive_file x\nactive_file 1\n", "inactive_file 1\nactive_file 1 kB\n",
        "inactive_file 1\nactive_file 1", "inactive_file 1\nactive_file 18446744073709551616\n"}) {
    Write("/a/b", "stat", text);
    EXPECT_EQ(Read().physical, kUnlimited) << text;
  }
}

TEST_F(CgroupMemoryV2Test, MissingUsageOrStatisticsGiveNoLimit) {
  Write("/a/b", "max", "1000\n");
  EXPECT_EQ(Read().physical, kUnlimited);
  Write("/a/b", "current", "100\n");
  EXPECT_EQ(Read().physical, kUnlimited);
}

TEST_F(CgroupMemoryV2Test, SmallestSwapLeftOfAllLevelsWins) {
  Write("/a/b", "swap.max", "1000\n");
  Write("/a/b", "swap.current", "100\n");
  EXPECT_EQ(Read().swap, 900U);
  EXPECT_EQ(Read().physical, kUnlimited);
  Write("/a", "swap.max", "500\n");
  Write("/a", "swap.current", "200\n");
  EXPECT_EQ(Read().swap, 300U);
}

TEST_F(CgroupMemoryV2Test, ForbiddenOrFullSwapLeavesNone) {
  Write("/a/b", "swap.max", "0\n");
  Write("/a/b", "swap.current", "0\n");
  EXPECT_EQ(Read().swap, 0U);
  Write("/a/b", "swap.max", "100\n");
  Write("/a/b", "swap.current", "200\n");
  EXPECT_EQ(Read().swap, 0U);
}

TEST_F(CgroupMemoryV2Test, MalformedSwapFigureGivesNoLimit) {
  for (const std::string text : kMalformed) {
    for (const std::string file : {"swap.max", "swap.current"}) {
      Write("/a/b", "swap.max", "1000\n");
      Write("/a/b", "swap.current", "100\n");
      Write("/a/b", file, text);
      EXPECT_EQ(Read().swap, kUnlimited) << file << " " << text;
    }
  }
}

TEST_F(CgroupMemoryV2Test, SwapFilesAreNotReadWithoutSwap) {
  WriteGroup("/a/b", "1000", "100");
  Write("/a/b", "swap.max", "1000\n");
  Write("/a/b", "swap.current", "100\n");
  const auto room = ReadCgroupRoom(tree_.root(), /*with_swap=*/false);
  ASSERT_TRUE(room);
  EXPECT_EQ(room->swap, kUnlimited);
  EXPECT_EQ(room->physical, 900U);
}

TEST_F(CgroupMemoryV2Test, AnyLevelForbidsZswapWriteback) {
  EXPECT_TRUE(Read().zswap_writeback);
  for (const std::string group : {"/a/b", "/a", ""}) {
    Write(group, "zswap.writeback", "0\n");
    EXPECT_FALSE(Read().zswap_writeback) << group;
    Write(group, "zswap.writeback", "1\n");
    EXPECT_TRUE(Read().zswap_writeback) << group;
  }
}

TEST_F(CgroupMemoryV2Test, ThereIsNoSwappinessPerGroup) {
  Write("/a/b", "swappiness", "0\n");
  EXPECT_EQ(Read().swappiness, std::nullopt);
}

TEST_F(CgroupMemoryV2Test, UnreadableFileFails) {
  const auto fails_without = [this](const std::string& file) {
    WriteGroup("/a/b", "1000", "100");
    Write("/a/b", "swap.max", "1000\n");
    Write("/a/b", "swap.current", "100\n");
    tree_.MakeUnreadable("/cg/a/b/memory." + file);
    const bool fails = !ReadCgroupRoom(tree_.root(), /*with_swap=*/true);
    tree_.Remove("/cg/a/b/memory." + file);
    return fails;
  };
  for (const std::string file :
       {"max", "current", "stat", "swap.max", "swap.current", "zswap.writeback"}) {
    EXPECT_TRUE(fails_without(file)) << file;
  }
}

TEST_F(CgroupMemoryV2Test, UnreadableMountTableFails) {
  tree_.MakeUnreadable("/proc/thread-self/mountinfo");
  EXPECT_FALSE(ReadCgroupRoom(tree_.root(), /*with_swap=*/true));
}

class CgroupMemoryV1Test : public testing::Test {
 protected:
  void SetUp() override {
    tree_.WriteGroups("4:memory:/a/b\n0::/\n");
    tree_.WriteMounts(MountV1("/", "/cg"));
    tree_.Write("/cg/a/b/cgroup.procs", "");
  }

  void Write(const std::string& group, const std::string& file, const std::string& text) {
    tree_.Write("/cg" + group + "/memory." + file, text);
  }

  // Writes a group without reclaimable memory.
  void WriteGroup(const std::string& group, const std::string& limit, const std::string& usage) {
    Write(group, "limit_in_bytes", limit + "\n");
    Write(group, "usage_in_bytes", usage + "\n");
    Write(group, "stat", "total_inactive_file 0\ntotal_active_file 0\n");
    Write(group, "use_hierarchy", "1\n");
  }

  void WriteBoth(const std::string& group, const std::string& limit, const std::string& usage) {
    Write(group, "memsw.limit_in_bytes", limit + "\n");
    Write(group, "memsw.usage_in_bytes", usage + "\n");
  }

  CgroupRoom Read() {
    const auto room = ReadCgroupRoom(tree_.root(), /*with_swap=*/true);
    EXPECT_TRUE(room);
    return room.value_or(CgroupRoom{});
  }

  MachineTree tree_;
};

TEST_F(CgroupMemoryV1Test, RoomIsLimitLessUsage) {
  WriteGroup("/a/b", "1000", "300");
  EXPECT_EQ(Read().physical, 700U);
  EXPECT_EQ(Read().swap, kUnlimited);
  EXPECT_EQ(Read().memory_and_swap, kUnlimited);
}

// The last whole page below 2^63, with pages of 4 KiB and of 64 KiB.
TEST_F(CgroupMemoryV1Test, LargestLimitGivesNoLimit) {
  for (const std::string limit : {"9223372036854771712", "9223372036854710272", kHuge}) {
    WriteGroup("/a/b", limit, "300");
    EXPECT_EQ(Read().physical, kUnlimited) << limit;
    WriteGroup("/a/b", "1000", "300");
    WriteBoth("/a/b", limit, "300");
    EXPECT_EQ(Read().memory_and_swap, kUnlimited) << limit;
  }
}

TEST_F(CgroupMemoryV1Test, LimitBelow2To62IsALimit) {
  WriteGroup("/a/b", "4611686018427387903", "3");  // 2^62 - 1
  EXPECT_EQ(Read().physical, 4611686018427387900U);
  WriteGroup("/a/b", "4611686018427387904", "3");
  EXPECT_EQ(Read().physical, kUnlimited);
}

TEST_F(CgroupMemoryV1Test, StatisticsThatIncludeChildrenAreUsed) {
  WriteGroup("/a/b", "1000", "900");
  Write("/a/b", "stat",
        "cache 80\nshmem 0\ninactive_file 50\nactive_file 30\nhierarchical_memory_limit 1000\n"
        "total_cache 700\ntotal_shmem 100\ntotal_inactive_file 400\ntotal_active_file 200\n");
  EXPECT_EQ(Read().physical, 700U);
}

TEST_F(CgroupMemoryV1Test, MemoryAndSwapHaveACommonLimit) {
  WriteGroup("/a/b", "1000", "900");
  Write("/a/b", "stat", "total_inactive_file 100\ntotal_active_file 50\n");
  WriteBoth("/a/b", "1500", "1100");
  EXPECT_EQ(Read().physical, 250U);
  EXPECT_EQ(Read().memory_and_swap, 550U);
  EXPECT_EQ(Read().swap, kUnlimited);
}

TEST_F(CgroupMemoryV1Test, SmallestRoomOfAllLevelsWins) {
  for (const std::string tightest : {"/a/b", "/a", ""}) {
    for (const std::string group : {"/a/b", "/a", ""}) {
      WriteGroup(group, group == tightest ? "1000" : "2000", "100");
      WriteBoth(group, group == tightest ? "1100" : "2100", "200");
    }
    EXPECT_EQ(Read().physical, 900U) << tightest;
    EXPECT_EQ(Read().memory_and_swap, 900U) << tightest;
  }
}

TEST_F(CgroupMemoryV1Test, AncestorWithoutHierarchyDoesNotLimit) {
  WriteGroup("/a/b", "2000", "100");
  WriteGroup("/a", "1000", "100");
  Write("/a", "use_hierarchy", "0\n");
  EXPECT_EQ(Read().physical, 1900U);
}

TEST_F(CgroupMemoryV1Test, OwnGroupsLimitHoldsWithoutHierarchy) {
  WriteGroup("/a/b", "1000", "100");
  Write("/a/b", "use_hierarchy", "0\n");
  EXPECT_EQ(Read().physical, 900U);
}

TEST_F(CgroupMemoryV1Test, SwappinessIsThatOfOwnGroup) {
  Write("/a", "swappiness", "0\n");
  EXPECT_EQ(Read().swappiness, std::nullopt);
  Write("/a/b", "swappiness", "60\n");
  EXPECT_EQ(Read().swappiness, 60U);
}

TEST_F(CgroupMemoryV1Test, SwappinessIsNotReadWithoutSwap) {
  Write("/a/b", "swappiness", "60\n");
  const auto room = ReadCgroupRoom(tree_.root(), /*with_swap=*/false);
  ASSERT_TRUE(room);
  EXPECT_EQ(room->swappiness, std::nullopt);
}

TEST_F(CgroupMemoryV1Test, GroupThatLeavesTheLeastMemoryIsNamed) {
  const auto tightest = [this] {
    PathBuffer directory;
    EXPECT_TRUE(ReadCgroupRoom(tree_.root(), /*with_swap=*/false, &directory));
    const std::string_view path = directory.view();
    return path.empty() ? "none" : std::string(path.substr((tree_.root() + "/cg").size()));
  };
  EXPECT_EQ(tightest(), "none");
  WriteGroup("/a/b", "1000", "100");
  EXPECT_EQ(tightest(), "/a/b");
  WriteGroup("/a", "2000", "1100");  // as much, but further up
  EXPECT_EQ(tightest(), "/a/b");
  WriteGroup("/a", "2000", "1101");
  EXPECT_EQ(tightest(), "/a");
}

TEST_F(CgroupMemoryV1Test, MalformedFigureGivesNoLimit) {
  for (const std::string text : kMalformed) {
    for (const std::string file : {"limit_in_bytes", "usage_in_bytes", "stat"}) {
      WriteGroup("/a/b", "1000", "100");
      WriteBoth("/a/b", "1500", "100");
      Write("/a/b", file, text);
      EXPECT_EQ(Read().physical, kUnlimited) << file << " " << text;
      EXPECT_EQ(Read().memory_and_swap, kUnlimited) << file << " " << text;
    }
    for (const std::string file : {"memsw.limit_in_bytes", "memsw.usage_in_bytes"}) {
      WriteGroup("/a/b", "1000", "100");
      WriteBoth("/a/b", "1500", "100");
      Write("/a/b", file, text);
      EXPECT_EQ(Read().physical, 900U) << file << " " << text;
      EXPECT_EQ(Read().memory_and_swap, kUnlimited) << file << " " << text;
    }
  }
}

TEST_F(CgroupMemoryV1Test, UnreadableFileFails) {
  const auto fails_without = [this](const std::string& group, const std::string& file) {
    for (const std::string each : {"/a/b", "/a"}) {
      WriteGroup(each, "1000", "100");
      WriteBoth(each, "1500", "100");
      Write(each, "swappiness", "60\n");
    }
    tree_.MakeUnreadable("/cg" + group + "/memory." + file);
    const bool fails = !ReadCgroupRoom(tree_.root(), /*with_swap=*/true);
    tree_.Remove("/cg" + group + "/memory." + file);
    return fails;
  };
  for (const std::string file : {"limit_in_bytes", "usage_in_bytes", "stat", "swappiness",
                                 "memsw.limit_in_bytes", "memsw.usage_in_bytes"}) {
    EXPECT_TRUE(fails_without("/a/b", file)) << file;
  }
}

// The own group leaves 900 of memory, and 1300 of memory and swap.
TEST_F(CgroupMemoryV1Test, AncestorIsReadInFullOnlyIfItMayBeTheTightest) {
  const auto reads = [this](const std::string& file, const std::string& usage,
                            const std::string& both_usage) {
    WriteGroup("/a/b", "1000", "100");
    WriteBoth("/a/b", "1500", "200");
    WriteGroup("/a", "2000", usage);
    WriteBoth("/a", "2500", both_usage);
    tree_.MakeUnreadable("/cg/a/memory." + file);
    const bool read = !ReadCgroupRoom(tree_.root(), /*with_swap=*/true);
    tree_.Remove("/cg/a/memory." + file);
    return read;
  };
  for (const std::string file : {"use_hierarchy", "stat"}) {
    EXPECT_TRUE(reads(file, "1101", "1200")) << file;
    EXPECT_TRUE(reads(file, "1100", "1201")) << file;
    EXPECT_FALSE(reads(file, "1100", "1200")) << file;
  }
}

TEST_F(CgroupMemoryV1Test, AncestorWithoutACommonLimitIsNotReadInFullIfItHasMoreRoom) {
  WriteGroup("/a/b", "1000", "100");
  WriteGroup("/a", "2000", "1100");
  tree_.MakeUnreadable("/cg/a/memory.stat");
  EXPECT_EQ(Read().physical, 900U);
}

// The whole hierarchy at its usual place.
TEST(CgroupMemoryAtUsualPlaceTest, GroupHasALimitAndTheRootOfTheHierarchyHasNone) {
  const MachineTree tree;
  tree.WriteGroups("0::/a\n");
  tree.Write("/sys/fs/cgroup/a/cgroup.procs", "");
  const std::string statistics = "inactive_file 0\nactive_file 0\n";
  tree.Write("/sys/fs/cgroup/a/memory.max", "1000\n");
  tree.Write("/sys/fs/cgroup/a/memory.current", "100\n");
  tree.Write("/sys/fs/cgroup/a/memory.stat", statistics);
  tree.Write("/sys/fs/cgroup/memory.max", "500\n");
  tree.Write("/sys/fs/cgroup/memory.current", "100\n");
  tree.Write("/sys/fs/cgroup/memory.stat", statistics);
  FakedFiles() = {tree.root(), CGROUP2_SUPER_MAGIC, 1, "cgroup:[4026531835]"};
  const auto room = ReadCgroupRoom("", /*with_swap=*/false);
  FakedFiles() = {};
  ASSERT_TRUE(room);
  EXPECT_EQ(room->physical, 900U);
}

class CgroupMemoryNeedsNamespacesTest : public NamespacesTest {};

// Another file is mounted over the one that the root of a hierarchy of version 1 has. Its reads
// fail.
TEST_F(CgroupMemoryNeedsNamespacesTest, LimitOfHierarchysRootIsNotRead) {
  const auto outcome = RunInOwnNamespaces([] {
    const std::string limit = "/sys/fs/cgroup/memory/memory.limit_in_bytes";
    if (access(limit.c_str(), F_OK) == 0 &&
        mount("/proc/self/mem", limit.c_str(), nullptr, MS_BIND, nullptr) != 0) {
      throw std::runtime_error("mount");
    }
    if (!ReadCgroupRoom("", /*with_swap=*/false)) {
      throw std::runtime_error("the limit of the root was read");
    }
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

}  // namespace
}  // namespace kestrel::tests

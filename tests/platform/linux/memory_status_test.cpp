// Memory statuses of whole machines. The directories in machines/ hold the files of real ones as a
// process there reads them. The other machines are invented: their layout is that of real ones,
// their figures are round, so that the results can be checked by hand.

#include "platform/linux/memory_status.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

#include "tests/platform/linux/machine_tree.h"

namespace kestrel::tests {
namespace {

using platform::MemoryLimit;
using platform::PathBuffer;
using platform::ReadMemoryStatus;

constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;

std::string Bytes(std::uint64_t mebibytes) { return std::to_string(mebibytes * kMebibyte) + "\n"; }

std::string BytesOrMax(std::optional<std::uint64_t> mebibytes) {
  return mebibytes ? Bytes(*mebibytes) : "max\n";
}

// The figures of a group in MiB; no limit is nullopt.
struct Group {
  std::optional<std::uint64_t> limit = std::nullopt;
  std::uint64_t usage = 0;
  std::uint64_t inactive_file = 0;
  std::uint64_t active_file = 0;
  std::uint64_t slab = 0;  // version 2 only
  // Version 2 limits swap alone, version 1 memory and swap together.
  std::optional<std::uint64_t> swap_limit = std::nullopt;
  std::uint64_t swap_usage = 0;
};

// A machine of 16384 MiB, of which 10240 are available, with 2048 MiB of free swap.
class MemoryStatusTest : public testing::Test {
 protected:
  MemoryStatusTest() {
    WriteMeminfo(/*swap=*/2048, /*committed=*/6144);
    tree_.Write("/proc/sys/vm/overcommit_memory", "0\n");
  }

  void WriteMeminfo(std::uint64_t swap, std::uint64_t committed,
                    std::uint64_t commit_limit = 10240) {
    const auto line = [](const std::string& name, std::uint64_t mebibytes) {
      return name + ":       " + std::to_string(mebibytes * 1024) + " kB\n";
    };
    tree_.Write("/proc/meminfo", line("MemTotal", 16384) + line("MemFree", 3413) +
                                     line("MemAvailable", 10240) + line("SwapTotal", swap) +
                                     line("SwapFree", swap) + line("CommitLimit", commit_limit) +
                                     line("Committed_AS", committed));
  }

  void WriteV2(const std::string& directory, const Group& group) {
    tree_.Write("/sys/fs/cgroup" + directory + "/cgroup.procs", "");
    const std::string path = "/sys/fs/cgroup" + directory + "/memory.";
    tree_.Write(path + "max", BytesOrMax(group.limit));
    tree_.Write(path + "current", Bytes(group.usage));
    tree_.Write(path + "stat", "anon 4096\ninactive_file " + Bytes(group.inactive_file) +
                                   "active_file " + Bytes(group.active_file) + "slab_reclaimable " +
                                   Bytes(group.slab));
    tree_.Write(path + "swap.max", BytesOrMax(group.swap_limit));
    tree_.Write(path + "swap.current", Bytes(group.swap_usage));
  }

  void WriteV1(const std::string& directory, const Group& group) {
    const std::string no_limit = "9223372036854771712\n";
    tree_.Write("/sys/fs/cgroup/memory" + directory + "/cgroup.procs", "");
    const std::string path = "/sys/fs/cgroup/memory" + directory + "/memory.";
    tree_.Write(path + "limit_in_bytes", group.limit ? Bytes(*group.limit) : no_limit);
    tree_.Write(path + "usage_in_bytes", Bytes(group.usage));
    tree_.Write(path + "stat", "inactive_file 0\nactive_file 0\ntotal_inactive_file " +
                                   Bytes(group.inactive_file) + "total_active_file " +
                                   Bytes(group.active_file));
    tree_.Write(path + "memsw.limit_in_bytes",
                group.swap_limit ? Bytes(*group.swap_limit) : no_limit);
    tree_.Write(path + "memsw.usage_in_bytes", Bytes(group.swap_usage));
    tree_.Write(path + "use_hierarchy", "1\n");
  }

  // A service below a slice without limits, as systemd lays them out.
  void WriteService(const Group& service) {
    tree_.WriteGroups("0::/system.slice/render.service\n");
    tree_.WriteMounts(MountV2("/", "/sys/fs/cgroup"));
    WriteV2("/system.slice", {{}, 3072, 500, 100});
    WriteV2("/system.slice/render.service", service);
  }

  // Returns the directory of the group that decides, without the root; "" if another limit does.
  std::string LimitingGroup() {
    PathBuffer group;
    EXPECT_TRUE(group.Append("left over"));
    const auto status = ReadMemoryStatus(tree_.root(), &group);
    const bool decides = status && status->limit == MemoryLimit::kMemoryGroup;
    EXPECT_EQ(decides, !group.view().empty());
    return decides ? std::string(group.view()).substr(tree_.root().size()) : "";
  }

  // Both figures in MiB.
  void ExpectStatus(std::uint64_t available, std::uint64_t committable) {
    const auto status = ReadMemoryStatus(tree_.root());
    ASSERT_TRUE(status);
    EXPECT_EQ(status->total_physical, 16384 * kMebibyte);
    EXPECT_EQ(status->available_physical, available * kMebibyte);
    EXPECT_EQ(status->committable, committable * kMebibyte);
  }

  MachineTree tree_;
};

// The group of a container: 512 - (300 - 120 - 60 - 16 / 2), and 512 - 40 of swap.
constexpr Group kContainer = {512, 300, 120, 60, 16, 512, 40};

TEST_F(MemoryStatusTest, ContainerOnVersion2InItsOwnNamespace) {
  tree_.WriteGroups("0::/\n");
  tree_.WriteMounts("1046 1042 0:68 / /sys ro - sysfs sysfs ro\n" + MountV2("/", "/sys/fs/cgroup"));
  WriteV2("", kContainer);
  ExpectStatus(400, 472);
}

TEST_F(MemoryStatusTest, ContainerOnVersion2InTheMachinesNamespace) {
  tree_.WriteGroups("0::/system.slice/docker-7c1f.scope\n");
  tree_.WriteMounts(MountV2("/system.slice/docker-7c1f.scope", "/sys/fs/cgroup"));
  WriteV2("", kContainer);
  ExpectStatus(400, 472);
}

// 512 - (300 - 120 - 60), and 768 - (400 - 120 - 60) of memory and swap.
TEST_F(MemoryStatusTest, ContainerOnVersion1) {
  tree_.WriteGroups("4:cpuset:/docker/7c1f\n3:memory:/docker/7c1f\n2:cpu,cpuacct:/docker/7c1f\n");
  tree_.WriteMounts(
      "1049 1047 0:32 /docker/7c1f /sys/fs/cgroup/cpuset ro - cgroup cgroup rw,cpuset\n" +
      MountV1("/docker/7c1f", "/sys/fs/cgroup/memory"));
  WriteV1("", {512, 300, 120, 60, 0, 768, 400});
  ExpectStatus(392, 156);
}

// The pod is the tightest group: 1280 - (900 - 70 - 50 - 20 / 2). Its container would have 1532.
TEST_F(MemoryStatusTest, PodIsTighterThanItsContainer) {
  WriteMeminfo(/*swap=*/0, /*committed=*/6144);
  tree_.WriteGroups("0::/kubepods.slice/pod0c5a.slice/cri-7c1f.scope\n");
  tree_.WriteMounts(MountV2("/", "/sys/fs/cgroup"));
  WriteV2("/kubepods.slice", {15360, 4096, 700, 200, 80});
  WriteV2("/kubepods.slice/pod0c5a.slice", {1280, 900, 70, 50, 20, 0});
  WriteV2("/kubepods.slice/pod0c5a.slice/cri-7c1f.scope", {2048, 600, 50, 30, 4, 0});
  ExpectStatus(510, 0);
}

// Only the user's slice has limits: 4096 - (3072 - 700 - 200 - 120 / 2), and 1024 - 256 of swap.
// The process's own group uses twice its memory.high.
TEST_F(MemoryStatusTest, SliceLimitsThrottledGroup) {
  tree_.WriteGroups("0::/user.slice/user-1000.slice/user@1000.service/app.slice/shell.scope\n");
  tree_.WriteMounts(MountV2("/", "/sys/fs/cgroup"));
  WriteV2("/user.slice", {{}, 2048, 500, 100});
  WriteV2("/user.slice/user-1000.slice", {4096, 3072, 700, 200, 120, 1024, 256});
  WriteV2("/user.slice/user-1000.slice/user@1000.service", {{}, 2048, 500, 100});
  WriteV2("/user.slice/user-1000.slice/user@1000.service/app.slice", {{}, 2048, 500, 100});
  const std::string own = "/user.slice/user-1000.slice/user@1000.service/app.slice/shell.scope";
  WriteV2(own, {{}, 2048, 500, 100});
  tree_.Write("/sys/fs/cgroup" + own + "/memory.high", Bytes(1024));
  ExpectStatus(1984, 768);
}

// 1024 - (400 - 50 - 30).
TEST_F(MemoryStatusTest, HybridMachineWithMemoryOnVersion1) {
  WriteMeminfo(/*swap=*/0, /*committed=*/6144);
  tree_.WriteGroups(
      "3:memory:/system.slice/render.service\n2:cpuset:/\n0::/system.slice/render.service\n");
  tree_.WriteMounts("30 23 0:26 / /sys/fs/cgroup ro - tmpfs tmpfs ro,mode=755\n" +
                    MountV2("/", "/sys/fs/cgroup/unified") + MountV1("/", "/sys/fs/cgroup/memory"));
  WriteV1("", {{}, 5120, 1500, 900, 0, {}, 5120});
  WriteV1("/system.slice", {{}, 2048, 500, 100, 0, {}, 2048});
  WriteV1("/system.slice/render.service", {1024, 400, 50, 30, 0, {}, 400});
  ExpectStatus(704, 0);
}

// 1024 - (400 - 50 - 30 - 4 / 2).
TEST_F(MemoryStatusTest, HybridMachineWithMemoryOnVersion2) {
  WriteMeminfo(/*swap=*/0, /*committed=*/6144);
  tree_.WriteGroups(
      "2:cpu,cpuacct:/\n1:name=systemd:/system.slice/render.service\n0::/render.service\n");
  tree_.WriteMounts(
      MountV2("/", "/sys/fs/cgroup/unified") +
      "32 30 0:28 / /sys/fs/cgroup/systemd rw - cgroup cgroup rw,xattr,name=systemd\n");
  WriteV2("/unified/render.service", {1024, 400, 50, 30, 4});
  ExpectStatus(706, 0);
}

TEST_F(MemoryStatusTest, LimitAboveMachinesRamChangesNothing) {
  WriteService({65536, 2048, 500, 100});
  ExpectStatus(10240, 2048);
}

TEST_F(MemoryStatusTest, LimitBelowUsageLeavesNothing) {
  WriteService({256, 700, 20, 10, 4, 0});
  ExpectStatus(0, 0);
}

// 2048 - (500 - 120 - 60 - 8 / 2). 3072 may still be committed.
TEST_F(MemoryStatusTest, StrictOvercommitInGroup) {
  WriteMeminfo(/*swap=*/2048, /*committed=*/7168);
  tree_.Write("/proc/sys/vm/overcommit_memory", "2\n");
  WriteService({2048, 500, 120, 60, 8, 512});
  ExpectStatus(1732, 512);
}

// Pages of RAM above the limit would be backed by nothing: 16384 may be committed, but there are
// 10240 of RAM and 2048 of swap.
TEST_F(MemoryStatusTest, CommitLimitAboveRamAndSwapIsBackedBySwapAlone) {
  tree_.Write("/proc/sys/vm/overcommit_memory", "2\n");
  WriteMeminfo(/*swap=*/2048, /*committed=*/0, /*commit_limit=*/16384);
  ExpectStatus(10240, 2048);
}

// The kernel keeps the smaller of 128 and 1/32 of the address space, and 8 from processes without
// CAP_SYS_ADMIN. 10240 - 6144 are left for all.
TEST_F(MemoryStatusTest, StrictOvercommitWithholdsReserves) {
  tree_.Write("/proc/sys/vm/overcommit_memory", "2\n");
  tree_.Write("/proc/sys/vm/user_reserve_kbytes", "131072\n");
  tree_.Write("/proc/sys/vm/admin_reserve_kbytes", "8192\n");
  tree_.Write("/proc/thread-self/status", "VmSize:\t 1048576 kB\nCapEff:\t0000000000000000\n");
  ExpectStatus(4096 - 32 - 8, 0);
  tree_.Write("/proc/thread-self/status", "VmSize:\t68719476736 kB\nCapEff:\t0000000000000000\n");
  ExpectStatus(4096 - 128 - 8, 0);
}

TEST_F(MemoryStatusTest, Swappiness0LeavesNoSwap) {
  tree_.Write("/proc/sys/vm/swappiness", "0\n");
  ExpectStatus(10240, 0);
  WriteService({512, 300});
  ExpectStatus(212, 0);
  tree_.Write("/proc/sys/vm/swappiness", "1\n");
  ExpectStatus(212, 2048);
}

TEST_F(MemoryStatusTest, Swappiness0OfVersion1GroupLeavesItNoSwap) {
  tree_.WriteGroups("3:memory:/a\n");
  tree_.WriteMounts(MountV1("/", "/sys/fs/cgroup/memory"));
  WriteV1("/a", {512, 300});
  ExpectStatus(212, 2048);
  tree_.Write("/sys/fs/cgroup/memory/a/memory.swappiness", "0\n");
  ExpectStatus(212, 0);
  tree_.Write("/proc/sys/vm/swappiness", "0\n");
  tree_.Write("/sys/fs/cgroup/memory/a/memory.swappiness", "60\n");
  ExpectStatus(212, 2048);
}

TEST_F(MemoryStatusTest, UnreadableSwappinessFails) {
  tree_.MakeUnreadable("/proc/sys/vm/swappiness");
  EXPECT_EQ(ReadMemoryStatus(tree_.root()), std::nullopt);
  WriteMeminfo(/*swap=*/0, /*committed=*/6144);
  ExpectStatus(10240, 0);
}

TEST_F(MemoryStatusTest, ForbiddenZswapWritebackLeavesNoSwapWithZswap) {
  WriteService({512, 300});
  tree_.Write("/sys/module/zswap/parameters/enabled", "Y\n");
  ExpectStatus(212, 2048);
  tree_.Write("/sys/fs/cgroup/system.slice/memory.zswap.writeback", "0\n");
  ExpectStatus(212, 0);
  tree_.Write("/sys/module/zswap/parameters/enabled", "N\n");
  ExpectStatus(212, 2048);
  tree_.Remove("/sys/module/zswap/parameters/enabled");
  ExpectStatus(212, 2048);
}

// Entries of open files and tmpfs are in the slab, but stay.
TEST_F(MemoryStatusTest, HalfOfReclaimableSlabCounts) {
  WriteService({512, 300, 0, 0, 100});
  ExpectStatus(262, 2048);
}

TEST_F(MemoryStatusTest, AncestorLimitsGroupWhosePathIsTooLong) {
  tree_.WriteMounts(MountV2("/", "/sys/fs/cgroup"));
  WriteV2("/system.slice", {300, 0});
  std::string path = "/system.slice";
  for (int level = 1; level <= 25; ++level) {
    path += "/" + std::string(99, 'n');
    WriteV2(path, {{}, 0});
    tree_.WriteGroups("0::" + path + "\n");
    ExpectStatus(300, 2048);
  }
}

TEST_F(MemoryStatusTest, HiddenMountIsNotTaken) {
  tree_.WriteGroups("0::/a/b\n");
  tree_.WriteMounts(MountV2("/", "/sys/fs/cgroup") +
                    "40 30 0:40 / /sys/fs/cgroup rw - tmpfs t rw\n" +
                    MountV2("/", "/sys/fs/cgroup/second"));
  WriteV2("/second/a/b", {300, 0});
  ExpectStatus(300, 2048);
}

TEST_F(MemoryStatusTest, MountHiddenByThatOfAncestorIsNotTaken) {
  tree_.WriteGroups("0::/a/b\n");
  tree_.WriteMounts(MountV2("/", "/sys/fs/cgroup") + MountV2("/a", "/sys/fs/cgroup"));
  WriteV2("/b", {300, 0});
  ExpectStatus(300, 2048);
}

TEST_F(MemoryStatusTest, MountFromAboveNamespaceRanksLast) {
  tree_.WriteGroups("0::/\n");
  tree_.WriteMounts(MountV2("/../..", "/sys/fs/cgroup/host") + MountV2("/", "/sys/fs/cgroup/own"));
  WriteV2("/host", {{}, 0});
  WriteV2("/own", {300, 0});
  ExpectStatus(300, 2048);
}

TEST_F(MemoryStatusTest, TightestGroupIsTheLimit) {
  WriteService({2048, 500});
  EXPECT_EQ(LimitingGroup(), "/sys/fs/cgroup/system.slice/render.service");
  WriteV2("/system.slice", {4096, 500});
  EXPECT_EQ(LimitingGroup(), "/sys/fs/cgroup/system.slice/render.service");
  WriteV2("/system.slice", {1024, 500});
  EXPECT_EQ(LimitingGroup(), "/sys/fs/cgroup/system.slice");
}

TEST_F(MemoryStatusTest, TightestCommonLimitIsTheLimit) {
  tree_.WriteGroups("3:memory:/a/b\n");
  tree_.WriteMounts(MountV1("/", "/sys/fs/cgroup/memory"));
  WriteV1("/a/b", {1024, 100, 0, 0, 0, 2048, 100});
  WriteV1("/a", {4096, 3000, 0, 0, 0, 4096, 3500});
  EXPECT_EQ(LimitingGroup(), "/sys/fs/cgroup/memory/a");
}

TEST_F(MemoryStatusTest, LimitAboveMachinesRamIsNotTheLimit) {
  WriteService({65536, 2048});
  EXPECT_EQ(LimitingGroup(), "");
}

TEST_F(MemoryStatusTest, FailedQueryNamesNoGroup) {
  WriteService({2048, 500});
  EXPECT_NE(LimitingGroup(), "");
  tree_.MakeUnreadable("/proc/sys/vm/overcommit_memory");
  EXPECT_EQ(LimitingGroup(), "");
}

// Reading a limit failed, so the group may have any.
TEST_F(MemoryStatusTest, UnreadableStatisticsOfGroupFail) {
  WriteService({512, 300});
  tree_.MakeUnreadable("/sys/fs/cgroup/system.slice/render.service/memory.stat");
  EXPECT_EQ(ReadMemoryStatus(tree_.root()), std::nullopt);
}

TEST_F(MemoryStatusTest, OnlyOvercommitMode2IsStrict) {
  for (const std::string mode : {"0\n", "1\n", "", "22\n", "-2\n", "x\n"}) {
    tree_.Write("/proc/sys/vm/overcommit_memory", mode);
    ExpectStatus(10240, 2048);
  }
  tree_.Write("/proc/sys/vm/overcommit_memory", "2\n");
  ExpectStatus(4096, 0);
}

TEST_F(MemoryStatusTest, UnreadableOvercommitModeFails) {
  tree_.MakeUnreadable("/proc/sys/vm/overcommit_memory");
  EXPECT_EQ(ReadMemoryStatus(tree_.root()), std::nullopt);
}

// Debian's kernels with version 2 and swap. The limits are on the parent group: 268435456 bytes of
// memory and 67108864 of swap. A file of 150 MiB had been read, and a process held 64 MiB.
void ExpectRecordedStatus(const std::string& machine, std::uint64_t total_kibibytes,
                          std::uint64_t available) {
  PathBuffer group;
  const std::string root = std::string(KESTRELCORE_MACHINES) + "/" + machine;
  const auto status = ReadMemoryStatus(root, &group);
  ASSERT_TRUE(status);
  EXPECT_EQ(status->total_physical, total_kibibytes * 1024);
  EXPECT_EQ(status->available_physical, available);
  EXPECT_EQ(status->committable, 67108864U);
  EXPECT_EQ(group.view(), root + "/sys/fs/cgroup/box");
}

// Limit less usage, plus file pages and half of the reclaimable slab.
TEST(RecordedMachineTest, Linux61UnderLoad) {
  ExpectRecordedStatus("linux_6_1", 2026000,
                       268435456U - (197386240U - 115310592U - 8192U - 12994096U / 2));
}

TEST(RecordedMachineTest, Linux612UnderLoad) {
  ExpectRecordedStatus("linux_6_12", 2020704,
                       268435456U - (199331840U - 114036736U - 8192U - 12853656U / 2));
}

TEST(RecordedMachineTest, MachineWithoutFilesHasNoStatus) {
  EXPECT_EQ(ReadMemoryStatus(KESTRELCORE_MACHINES "/none"), std::nullopt);
  EXPECT_EQ(ReadMemoryStatus(std::string(5000, '/')), std::nullopt);
}

// Two queries never agree to the byte, so only figures of one query are compared.
TEST(MemoryStatusOfThisMachineTest, AvailableIsPartOfTotal) {
  const auto status = ReadMemoryStatus("");
  ASSERT_TRUE(status);
  EXPECT_GT(status->total_physical, 0U);
  EXPECT_LE(status->available_physical, status->total_physical);
}

}  // namespace
}  // namespace kestrel::tests

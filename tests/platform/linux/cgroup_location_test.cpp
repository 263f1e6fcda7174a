#include "platform/linux/cgroup_location.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <sched.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/faked_files.h"
#include "tests/platform/linux/machine_tree.h"

namespace kestrel::tests {
namespace {

using platform::CgroupVersion;
using platform::FindMemoryCgroup;
using platform::PathBuffer;

class CgroupLocationTest : public testing::Test {
 protected:
  // Makes a directory that of a group.
  void MakeGroup(const std::string& directory) { tree_.Write(directory + "/cgroup.procs", ""); }

  // Returns the version and the directory, with a bar after the topmost visible ancestor.
  std::string Find(const std::string& groups, const std::string& mounts) {
    tree_.WriteGroups(groups);
    tree_.WriteMounts(mounts);
    return Find();
  }

  std::string Find() {
    const std::string root = tree_.root();
    bool failed = false;
    const auto group = FindMemoryCgroup(root, failed);
    if (!group) {
      return failed ? "failed" : "none";
    }
    EXPECT_FALSE(failed);
    std::string directory(group->directory.view());
    directory.insert(group->top_length, "|");
    EXPECT_EQ(directory.substr(0, root.size()), root);
    return (group->version == CgroupVersion::kV1 ? "v1 " : "v2 ") + directory.substr(root.size());
  }

  MachineTree tree_;
};

TEST_F(CgroupLocationTest, GroupIsBelowMountPoint) {
  MakeGroup("/sys/fs/cgroup/a.slice/b.scope");
  EXPECT_EQ(Find("0::/a.slice/b.scope\n", MountV2("/", "/sys/fs/cgroup")),
            "v2 /sys/fs/cgroup|/a.slice/b.scope");
}

// "//a" without its first slash is an absolute path, which no directory is the base of.
TEST_F(CgroupLocationTest, GroupThatBeginsWithSeveralSlashesIsBelowMountPoint) {
  MakeGroup("/sys/fs/cgroup/a");
  EXPECT_EQ(Find("0:://a\n", MountV2("/", "/sys/fs/cgroup")), "v2 /sys/fs/cgroup|//a");
  EXPECT_EQ(Find("0::///a\n", MountV2("/", "/sys/fs/cgroup")), "v2 /sys/fs/cgroup|///a");
}

TEST_F(CgroupLocationTest, RootGroupIsMountPoint) {
  MakeGroup("/sys/fs/cgroup");
  EXPECT_EQ(Find("0::/\n", MountV2("/", "/sys/fs/cgroup")), "v2 /sys/fs/cgroup|");
}

TEST_F(CgroupLocationTest, Version1HierarchyIsFoundByMemoryController) {
  MakeGroup("/sys/fs/cgroup/memory/a");
  MakeGroup("/sys/fs/cgroup/cpuset/x");
  const std::string mounts = "34 31 0:31 / /sys/fs/cgroup/cpuset rw - cgroup cgroup rw,cpuset\n" +
                             MountV1("/", "/sys/fs/cgroup/memory");
  EXPECT_EQ(Find("5:cpuset:/x\n4:memory:/a\n1:name=systemd:/y\n", mounts),
            "v1 /sys/fs/cgroup/memory|/a");
}

TEST_F(CgroupLocationTest, Version1HierarchyMayHaveOtherControllersToo) {
  MakeGroup("/mnt/all/a");
  EXPECT_EQ(Find("2:cpu,memory,pids:/a\n",
                 "34 31 0:31 / /mnt/all rw - cgroup cgroup rw,xattr,cpu,memory,pids\n"),
            "v1 /mnt/all|/a");
}

TEST_F(CgroupLocationTest, Version1HierarchyOfOtherControllersIsIgnored) {
  MakeGroup("/mnt/cpu/a");
  const std::string head = "34 31 0:31 / /mnt/cpu rw - cgroup ";
  EXPECT_EQ(Find("4:memory:/a\n", head + "cgroup rw,cpu\n"), "none");
  EXPECT_EQ(Find("4:memory:/a\n", head + "memory,source rw,cpu\n"), "none");
}

TEST_F(CgroupLocationTest, GroupOfOtherControllersIsIgnored) {
  MakeGroup("/sys/fs/cgroup/old");
  MakeGroup("/sys/fs/cgroup/new");
  const std::string mounts = MountV2("/", "/sys/fs/cgroup");
  EXPECT_EQ(Find("4:cpu:/old\n", mounts), "none");
  EXPECT_EQ(Find("0::/new\n4:cpu:/old\n", mounts), "v2 /sys/fs/cgroup|/new");
}

TEST_F(CgroupLocationTest, HierarchyNamedMemoryIsIgnored) {
  MakeGroup("/mnt/named/a");
  EXPECT_EQ(
      Find("2:name=memory:/a\n", "34 31 0:31 / /mnt/named rw - cgroup cgroup rw,name=memory\n"),
      "none");
}

TEST_F(CgroupLocationTest, OtherFileSystemWithOptionMemoryIsIgnored) {
  MakeGroup("/mnt/other/a");
  EXPECT_EQ(Find("2:memory:/a\n", "34 31 0:31 / /mnt/other rw - fuse fuse rw,memory\n"), "none");
}

TEST_F(CgroupLocationTest, HybridMachineUsesVersionThatHasMemoryController) {
  MakeGroup("/memory/old");
  MakeGroup("/sys/fs/cgroup/unified/new");
  const std::string mounts = MountV2("/", "/sys/fs/cgroup/unified") + MountV1("/", "/memory");
  EXPECT_EQ(Find("4:memory:/old\n0::/new\n", mounts), "v1 /memory|/old");
  EXPECT_EQ(Find("0::/new\n4:memory:/old\n", mounts), "v1 /memory|/old");
  EXPECT_EQ(Find("4:cpu:/old\n0::/new\n", mounts), "v2 /sys/fs/cgroup/unified|/new");
}

TEST_F(CgroupLocationTest, MountOfOtherVersionIsIgnored) {
  MakeGroup("/sys/fs/cgroup/a");
  MakeGroup("/sys/fs/cgroup/memory/a");
  EXPECT_EQ(Find("4:memory:/a\n", MountV2("/", "/sys/fs/cgroup")), "none");
  EXPECT_EQ(Find("0::/a\n", MountV1("/", "/sys/fs/cgroup/memory")), "none");
}

TEST_F(CgroupLocationTest, MountOfPartShowsItsRootAtMountPoint) {
  MakeGroup("/sys/fs/cgroup");
  MakeGroup("/sys/fs/cgroup/sub");
  EXPECT_EQ(Find("0::/docker/f00\n", MountV2("/docker/f00", "/sys/fs/cgroup")),
            "v2 /sys/fs/cgroup|");
  EXPECT_EQ(Find("0::/docker/f00/sub\n", MountV2("/docker/f00", "/sys/fs/cgroup")),
            "v2 /sys/fs/cgroup|/sub");
}

TEST_F(CgroupLocationTest, MountOfPartDoesNotShowGroupsOutside) {
  MakeGroup("/sys/fs/cgroup");
  MakeGroup("/sys/fs/cgroupd");
  MakeGroup("/sys/fs/cgroup/d");
  MakeGroup("/sys/fs/cgroup/docker");
  MakeGroup("/sys/fs/cgroup/docker/f00d");
  EXPECT_EQ(Find("0::/docker/f00d\n", MountV2("/docker/f00", "/sys/fs/cgroup")), "none");
  EXPECT_EQ(Find("0::/docker\n", MountV2("/docker/f00", "/sys/fs/cgroup")), "none");
  EXPECT_EQ(Find("0::/\n", MountV2("/docker/f00", "/sys/fs/cgroup")), "none");
}

TEST_F(CgroupLocationTest, PathsOutsideNamespaceMatchFromTheirCommonStart) {
  MakeGroup("/sys/fs/cgroup");
  MakeGroup("/sys/fs/cgroup/b");
  MakeGroup("/sys/fs/cgroup/a/b");
  EXPECT_EQ(Find("0::/../../a/b\n", MountV2("/../..", "/sys/fs/cgroup")), "v2 /sys/fs/cgroup|/a/b");
  EXPECT_EQ(Find("0::/../a/b\n", MountV2("/../a", "/sys/fs/cgroup")), "v2 /sys/fs/cgroup|/b");
  EXPECT_EQ(Find("0::/../..\n", MountV2("/../..", "/sys/fs/cgroup")), "v2 /sys/fs/cgroup|");
}

TEST_F(CgroupLocationTest, GroupOutsideNamespaceIsNotInMountOfIt) {
  MakeGroup("/sys");
  MakeGroup("/sys/fs");
  MakeGroup("/sys/fs/a");
  MakeGroup("/sys/a");
  MakeGroup("/sys/fs/cgroup");
  MakeGroup("/sys/fs/cgroup/a");
  EXPECT_EQ(Find("0::/..\n", MountV2("/", "/sys/fs/cgroup")), "none");
  EXPECT_EQ(Find("0::/../a\n", MountV2("/", "/sys/fs/cgroup")), "none");
  EXPECT_EQ(Find("0::/../..\n", MountV2("/..", "/sys/fs/cgroup")), "none");
  EXPECT_EQ(Find("0::/../../a\n", MountV2("/..", "/sys/fs/cgroup")), "none");
}

// The mount's root is above that of the namespace: it is an ancestor, and the names of the groups
// between are unknown.
TEST_F(CgroupLocationTest, GroupBelowUnmountedNamesUsesMountedAncestor) {
  MakeGroup("/sys/fs/cgroup");
  EXPECT_EQ(Find("0::/\n", MountV2("/..", "/sys/fs/cgroup")), "v2 /sys/fs/cgroup|");
  EXPECT_EQ(Find("0::/a\n", MountV2("/../..", "/sys/fs/cgroup")), "v2 /sys/fs/cgroup|");
}

TEST_F(CgroupLocationTest, MountOfGroupOutsideNamespaceDoesNotShowGroupsInIt) {
  MakeGroup("/sys/fs/cgroup");
  MakeGroup("/sys/fs/cgroup/b");
  EXPECT_EQ(Find("0::/b\n", MountV2("/../a", "/sys/fs/cgroup")), "none");
}

// Memory is charged to the main thread's group; version 1 lets other threads be in other groups.
TEST_F(CgroupLocationTest, GroupOfMainThreadIsUsed) {
  MakeGroup("/sys/fs/cgroup/first");
  MakeGroup("/sys/fs/cgroup/other");
  tree_.Write("/proc/self/cgroup", "0::/first\n");
  const std::string mounts = MountV2("/", "/sys/fs/cgroup");
  EXPECT_EQ(Find("0::/other\n", mounts), "v2 /sys/fs/cgroup|/first");
  std::string found_by_other;
  std::thread([&] { found_by_other = Find("0::/other\n", mounts); }).join();
  EXPECT_EQ(found_by_other, "v2 /sys/fs/cgroup|/first");
}

TEST_F(CgroupLocationTest, GroupOfCallingThreadIsUsedAfterMainThreadEnded) {
  MakeGroup("/sys/fs/cgroup");
  MakeGroup("/sys/fs/cgroup/other");
  tree_.Write("/proc/self/cgroup", "0::/\n");
  std::string found;
  std::thread([&] { found = Find("0::/other\n", MountV2("/", "/sys/fs/cgroup")); }).join();
  EXPECT_EQ(found, "v2 /sys/fs/cgroup|/other");
}

// While it runs, "/" is its group.
TEST_F(CgroupLocationTest, GroupOfMainThreadIsReadOnceIfItCalls) {
  MakeGroup("/sys/fs/cgroup");
  tree_.Write("/proc/self/cgroup", "0::/\n");
  tree_.MakeUnreadable("/proc/thread-self/cgroup");
  tree_.WriteMounts(MountV2("/", "/sys/fs/cgroup"));
  EXPECT_EQ(Find(), "v2 /sys/fs/cgroup|");
}

TEST_F(CgroupLocationTest, NameThatBeginsWithDotsStaysInNamespace) {
  MakeGroup("/sys/fs/cgroup/..a/..b");
  EXPECT_EQ(Find("0::/..a/..b\n", MountV2("/", "/sys/fs/cgroup")), "v2 /sys/fs/cgroup|/..a/..b");
}

TEST_F(CgroupLocationTest, MountThatShowsLongestPathWins) {
  MakeGroup("/part/b");
  MakeGroup("/whole/a/b");
  MakeGroup("/own");
  MakeGroup("/other");
  const std::string part = MountV2("/a", "/part");
  const std::string whole = MountV2("/", "/whole");
  const std::string own = MountV2("/a/b", "/own");
  EXPECT_EQ(Find("0::/a/b\n", part + whole + own), "v2 /whole|/a/b");
  EXPECT_EQ(Find("0::/a/b\n", own + part), "v2 /part|/b");
  EXPECT_EQ(Find("0::/a/b\n", part + own), "v2 /part|/b");
  EXPECT_EQ(Find("0::/a/b\n", own + MountV2("/c", "/other")), "v2 /own|");
}

TEST_F(CgroupLocationTest, FirstOfEqualMountsWins) {
  MakeGroup("/one/b");
  MakeGroup("/two/b");
  EXPECT_EQ(Find("0::/a/b\n", MountV2("/a", "/one") + MountV2("/a", "/two")), "v2 /one|/b");
}

TEST_F(CgroupLocationTest, GroupNameMayContainColonsAndBlanks) {
  MakeGroup("/sys/fs/cgroup/a:b/c d");
  EXPECT_EQ(Find("0::/a:b/c d\n", MountV2("/", "/sys/fs/cgroup")), "v2 /sys/fs/cgroup|/a:b/c d");
}

TEST_F(CgroupLocationTest, EscapesInMountTableAreDecoded) {
  MakeGroup("/my groups\tx\\y/a/x");
  MakeGroup("/groups /a/x");
  MakeGroup("/x?/a/x");
  MakeGroup("/sys/fs/cgroup/c");
  EXPECT_EQ(Find("0::/a/x\n", MountV2("/", "/my\\040groups\\011x\\134y")),
            "v2 /my groups\tx\\y|/a/x");
  EXPECT_EQ(Find("0::/a/x\n", MountV2("/", "/groups\\040")), "v2 /groups |/a/x");
  EXPECT_EQ(Find("0::/a/x\n", MountV2("/", "/\\170\\077")), "v2 /x?|/a/x");
  EXPECT_EQ(Find("0::/a\\x2db.slice/c\n", MountV2("/a\\134x2db.slice", "/sys/fs/cgroup")),
            "v2 /sys/fs/cgroup|/c");
}

TEST_F(CgroupLocationTest, IncompleteEscapesAreKept) {
  MakeGroup("/a\\04");
  MakeGroup("/a\\048");
  MakeGroup("/a\\091");
  MakeGroup("/a\\901");
  MakeGroup("/a\\0/1");
  MakeGroup("/a\\x2db\\");
  EXPECT_EQ(Find("0::/\n", MountV2("/", "/a\\04")), "v2 /a\\04|");
  EXPECT_EQ(Find("0::/\n", MountV2("/", "/a\\048")), "v2 /a\\048|");
  EXPECT_EQ(Find("0::/\n", MountV2("/", "/a\\091")), "v2 /a\\091|");
  EXPECT_EQ(Find("0::/\n", MountV2("/", "/a\\901")), "v2 /a\\901|");
  EXPECT_EQ(Find("0::/\n", MountV2("/", "/a\\0/1")), "v2 /a\\0/1|");
  EXPECT_EQ(Find("0::/\n", MountV2("/", "/a\\x2db\\")), "v2 /a\\x2db\\|");
}

TEST_F(CgroupLocationTest, DigitsWithoutABackslashAreKept) {
  MakeGroup("/a101");
  EXPECT_EQ(Find("0::/\n", MountV2("/", "/a101")), "v2 /a101|");
}

TEST_F(CgroupLocationTest, TagsAndSourceOfMountAreIgnored) {
  MakeGroup("/sys/fs/cgroup/a");
  const std::string head = "30 23 0:26 / /sys/fs/cgroup rw";
  for (const std::string tail :
       {" - cgroup2 cgroup2 rw", " shared:9 - cgroup2 none rw", " - cgroup2  rw",
        " shared:9 master:2 propagate_from:1 unbindable - cgroup2 a\\040b rw", " - cgroup2"}) {
    EXPECT_EQ(Find("0::/a\n", head + tail + "\n"), "v2 /sys/fs/cgroup|/a") << tail;
  }
}

TEST_F(CgroupLocationTest, LongMountTableIsReadToTheEnd) {
  MakeGroup("/late/a");
  std::string mounts;
  for (int mount = 0; mount < 800; ++mount) {
    mounts += std::to_string(100 + mount) + " 27 0:" + std::to_string(100 + mount) +
              " / /var/lib/docker/overlay2/" + std::to_string(mount) +
              "/merged rw,relatime - overlay overlay rw,lowerdir=" + std::string(1000, 'l') + "\n";
  }
  EXPECT_EQ(Find("0::/a\n", mounts + MountV2("/", "/late")), "v2 /late|/a");
}

TEST_F(CgroupLocationTest, OverlongLineOfOtherMountIsIgnored) {
  MakeGroup("/late/a");
  const std::string overlay =
      "90 27 0:90 / /merged rw - overlay overlay rw,lowerdir=" + std::string(9000, 'l') + "\n";
  EXPECT_EQ(Find("0::/a\n", overlay + MountV2("/", "/late")), "v2 /late|/a");
}

// The longest directory leaves room for the longest name of a file, with its slash and its NUL.
constexpr std::size_t kLongestDirectory =
    PathBuffer::kCapacity - sizeof("/memory.memsw.limit_in_bytes");

constexpr std::size_t kNameSize = 100;  // of those of LongPath(), with the slash

std::string LongPath(std::size_t names) {
  std::string path;
  for (std::size_t name = 0; name < names; ++name) {
    path += "/" + std::string(kNameSize - 1, static_cast<char>('a' + name));
  }
  return path;
}

// How many names LongPath() may have at most below that directory.
std::size_t NamesThatFitBelow(const std::string& directory) {
  return (kLongestDirectory - directory.size()) / kNameSize;
}

TEST_F(CgroupLocationTest, OverlongPathBeginsAtNearestAncestorThatFits) {
  const std::string nearest = LongPath(NamesThatFitBelow(tree_.root() + "/cg"));
  MakeGroup("/cg" + nearest);
  EXPECT_EQ(Find("0::" + LongPath(12) + "\n", MountV2("/", "/cg")), "v2 /cg|" + nearest);
}

TEST_F(CgroupLocationTest, LongestPathThatFitsIsThatOfTheGroup) {
  const std::string ancestor = LongPath(NamesThatFitBelow(tree_.root() + "/cg") - 1);
  const std::size_t room = kLongestDirectory - (tree_.root() + "/cg" + ancestor + "/").size();
  const std::string longest = ancestor + "/" + std::string(room, 'x');
  MakeGroup("/cg" + longest);
  MakeGroup("/cg" + longest + "x");
  MakeGroup("/cg" + ancestor);
  EXPECT_EQ(Find("0::" + longest + "\n", MountV2("/", "/cg")), "v2 /cg|" + longest);
  EXPECT_EQ(Find("0::" + longest + "x\n", MountV2("/", "/cg")), "v2 /cg|" + ancestor);
}

TEST_F(CgroupLocationTest, LongestMountPointThatFitsIsUsed) {
  const std::string parent = LongPath(NamesThatFitBelow(tree_.root()) - 1);
  const std::size_t room = kLongestDirectory - (tree_.root() + parent + "/").size();
  const std::string longest = parent + "/" + std::string(room, 'x');
  MakeGroup(longest + "/a");
  MakeGroup(longest);
  MakeGroup(longest + "x/a");
  MakeGroup(longest + "x");
  EXPECT_EQ(Find("0::/a\n", MountV2("/", longest)), "v2 " + longest + "|");
  EXPECT_EQ(Find("0::/a\n", MountV2("/", longest + "x")), "none");
}

TEST_F(CgroupLocationTest, PathBeyondLineBufferBeginsAtAncestor) {
  const std::string nearest = LongPath(NamesThatFitBelow(tree_.root() + "/cg"));
  MakeGroup("/cg" + nearest);
  EXPECT_EQ(Find("0::" + LongPath(26) + "\n", MountV2("/", "/cg")), "v2 /cg|" + nearest);
}

// The line buffer has room for "0::", the root of the mount and 145 bytes more.
TEST_F(CgroupLocationTest, NameAtTheEndOfTheLineBufferIsUsedIfItIsWhole) {
  const std::string root = LongPath(19);
  const std::string name = "/" + std::string(143, 'x');
  MakeGroup("/cg" + name + "/y");
  MakeGroup("/cg" + name + "y");
  MakeGroup("/cg" + name);
  MakeGroup("/cg");
  EXPECT_EQ(Find("0::" + root + name + "/y\n", MountV2(root, "/cg")), "v2 /cg|" + name);
  EXPECT_EQ(Find("0::" + root + name + "yz\n", MountV2(root, "/cg")), "v2 /cg|");
}

TEST_F(CgroupLocationTest, MountOfPartShowsOverlongPath) {
  MakeGroup("/cg/own");
  EXPECT_EQ(Find("0::" + LongPath(18) + "/own\n", MountV2(LongPath(18), "/cg")), "v2 /cg|/own");
}

TEST_F(CgroupLocationTest, MountThatShowsMoreOfOverlongPathWins) {
  MakeGroup("/cg" + LongPath(8));
  MakeGroup("/part/own");
  const std::string groups = "0::" + LongPath(12) + "/own\n";
  EXPECT_EQ(Find(groups, MountV2(LongPath(12), "/part") + MountV2("/", "/cg" + LongPath(8))),
            "v2 /part|/own");
}

TEST_F(CgroupLocationTest, OverlongRootHasNoGroup) {
  tree_.WriteGroups("0::/a\n");
  tree_.WriteMounts(MountV2("/", "/sys/fs/cgroup"));
  bool failed = false;
  EXPECT_FALSE(FindMemoryCgroup(tree_.root() + std::string(PathBuffer::kCapacity, '/'), failed));
  EXPECT_FALSE(failed);
}

TEST_F(CgroupLocationTest, OverlongMountPointIsSkipped) {
  MakeGroup(LongPath(10) + "/a");
  MakeGroup("/cg/a");
  EXPECT_EQ(Find("0::/a\n", MountV2("/", LongPath(10))), "none");
  EXPECT_EQ(Find("0::/a\n", MountV2("/", LongPath(10)) + MountV2("/", "/cg")), "v2 /cg|/a");
}

TEST_F(CgroupLocationTest, MountHiddenByAnotherFileSystemIsSkipped) {
  MakeGroup("/second/a/b");
  const std::string hidden =
      MountV2("/", "/sys/fs/cgroup") + "40 30 0:40 / /sys/fs/cgroup rw - tmpfs tmpfs rw\n";
  EXPECT_EQ(Find("0::/a/b\n", hidden), "none");
  EXPECT_EQ(Find("0::/a/b\n", hidden + MountV2("/", "/second")), "v2 /second|/a/b");
}

// Below the mount point are the groups of the ancestor that is mounted last.
TEST_F(CgroupLocationTest, MountHiddenByThatOfAncestorIsSkipped) {
  MakeGroup("/sys/fs/cgroup/b");
  EXPECT_EQ(Find("0::/a/b\n", MountV2("/", "/sys/fs/cgroup") + MountV2("/a", "/sys/fs/cgroup")),
            "v2 /sys/fs/cgroup|/b");
}

TEST_F(CgroupLocationTest, MountFromAboveNamespaceRanksLast) {
  MakeGroup("/host");
  MakeGroup("/sys/fs/cgroup");
  const std::string above = MountV2("/../..", "/host");
  const std::string own = MountV2("/", "/sys/fs/cgroup");
  EXPECT_EQ(Find("0::/\n", above + own), "v2 /sys/fs/cgroup|");
  EXPECT_EQ(Find("0::/\n", own + above), "v2 /sys/fs/cgroup|");
  EXPECT_EQ(Find("0::/\n", above), "v2 /host|");
}

TEST_F(CgroupLocationTest, RemovedGroupBeginsAtItsParent) {
  MakeGroup("/sys/fs/cgroup/a");
  const std::string mount = MountV2("/", "/sys/fs/cgroup");
  EXPECT_EQ(Find("0::/a/b (deleted)\n", mount), "v2 /sys/fs/cgroup|/a");
  MakeGroup("/sys/fs/cgroup/a/b (deleted)");
  EXPECT_EQ(Find("0::/a/b (deleted)\n", mount), "v2 /sys/fs/cgroup|/a/b (deleted)");
  EXPECT_EQ(Find("0::/c/d (deleted)\n", mount), "none");
}

TEST_F(CgroupLocationTest, MountPointNamedLikeARemovedGroupHasNoParent) {
  MakeGroup("/a");
  tree_.Write("/a/b (deleted)/file", "");
  EXPECT_EQ(Find("0::/\n", MountV2("/", "/a/b\\040(deleted)")), "none");
}

TEST_F(CgroupLocationTest, MissingFilesGiveNoGroup) {
  EXPECT_EQ(Find(), "none");
  tree_.WriteGroups("0::/a\n");
  EXPECT_EQ(Find(), "none");
  tree_.WriteMounts("27 1 259:2 / / rw,relatime shared:1 - ext4 /dev/sda1 rw\n");
  EXPECT_EQ(Find(), "none");
}

TEST_F(CgroupLocationTest, UnreadableListOfGroupsFails) {
  tree_.WriteMounts(MountV2("/", "/sys/fs/cgroup"));
  tree_.MakeUnreadable("/proc/thread-self/cgroup");
  EXPECT_EQ(Find(), "failed");
}

TEST_F(CgroupLocationTest, UnreadableListOfMainThreadFailsThoughTheOtherIsRead) {
  tree_.MakeUnreadable("/proc/self/cgroup");
  tree_.WriteGroups("0::/a\n");
  tree_.WriteMounts(MountV2("/", "/sys/fs/cgroup"));
  bool failed = false;
  static_cast<void>(FindMemoryCgroup(tree_.root(), failed));
  EXPECT_TRUE(failed);
}

TEST_F(CgroupLocationTest, UnreadableMountTableFails) {
  tree_.WriteGroups("0::/a\n");
  tree_.MakeUnreadable("/proc/thread-self/mountinfo");
  EXPECT_EQ(Find(), "failed");
}

TEST_F(CgroupLocationTest, MalformedFilesGiveNoGroup) {
  MakeGroup("/memory");
  MakeGroup("/unified");
  MakeGroup("/unified/a");
  MakeGroup("/sys");
  MakeGroup("/sys/a");
  MakeGroup("/a");
  for (const std::string groups : {"", "\n", "0\n", "0:\n", "0::\n", "0::a\n", "nonsense\n",
                                   "4:memory:\n", "::\n", "0::/cut off"}) {
    EXPECT_EQ(Find(groups, MountV1("/", "/memory") + MountV2("/", "/unified")), "none") << groups;
  }
  for (const std::string mounts :
       {"", "\n", " - \n", " - cgroup2\n", "30 - cgroup2 c rw\n", "\\\n", "cgroup2\n",
        "30 23 0:26 / relative rw - cgroup2 c rw\n", "30 23 0:26 relative /sys rw - cgroup2 c rw\n",
        "30 23 0:26  /sys rw - cgroup2 c rw\n", "30 23 0:26 /  rw - cgroup2 c rw\n",
        "30 23 0:26 / /sys rw - cgroup2 cut off"}) {
    EXPECT_EQ(Find("0::/a\n", mounts), "none") << mounts;
  }
}

TEST_F(CgroupLocationTest, TopmostVisibleAncestorIsOpened) {
  MakeGroup("/sys/fs/cgroup/a/b");
  tree_.WriteGroups("0::/a/b\n");
  tree_.WriteMounts(MountV2("/", "/sys/fs/cgroup"));
  bool failed = false;
  const auto group = FindMemoryCgroup(tree_.root(), failed);
  ASSERT_TRUE(group);
  EXPECT_EQ(group->BelowTop(), "/a/b");
  EXPECT_EQ(faccessat(group->top.get(), "a/b/cgroup.procs", F_OK, 0), 0);
  EXPECT_FALSE(group->top_is_root);  // in a container, "/" is any group
}

TEST_F(CgroupLocationTest, MountPointThatCannotBeOpenedFails) {
  tree_.WriteGroups("0::/a\n");
  tree_.WriteMounts(MountV2("/", "/loop"));
  std::filesystem::create_symlink("loop", tree_.root() + "/loop");
  EXPECT_EQ(Find(), "failed");
}

// A machine with the hierarchy at its usual place, and mounted whole at "/mnt" too. The mount table
// names the second only, so the result shows whether it was read.
class UsualPlaceTest : public testing::Test {
 protected:
  UsualPlaceTest() {
    WriteMachine("0::/a\n", MountV2("/", "/mnt"), "/sys/fs/cgroup");
    FakedFiles() = {tree_.root(), CGROUP2_SUPER_MAGIC, 1, "cgroup:[4026531835]"};
  }
  ~UsualPlaceTest() override { FakedFiles() = {}; }

  void WriteMachine(const std::string& groups, const std::string& mounts,
                    const std::string& usual_place) {
    tree_.WriteGroups(groups);
    tree_.WriteMounts(mounts);
    tree_.Write("/mnt/a/cgroup.procs", "");
    tree_.Write(usual_place + "/a/cgroup.procs", "");
  }

  // Returns the directory; "whole " precedes that of a whole hierarchy.
  static std::string Find() {
    bool failed = false;
    const auto group = FindMemoryCgroup("", failed);
    EXPECT_FALSE(failed);
    return group ? (group->top_is_root ? "whole " : "") + std::string(group->directory.view())
                 : "none";
  }

  MachineTree tree_;
};

TEST_F(UsualPlaceTest, WholeHierarchyInInitialNamespaceIsUsed) {
  EXPECT_EQ(Find(), "whole /sys/fs/cgroup/a");
}

TEST_F(UsualPlaceTest, WholeHierarchyOfVersion1IsUsed) {
  WriteMachine("4:memory:/a\n", MountV1("/", "/mnt"), "/sys/fs/cgroup/memory");
  EXPECT_EQ(Find(), "/mnt/a");
  FakedFiles().file_system = CGROUP_SUPER_MAGIC;
  EXPECT_EQ(Find(), "whole /sys/fs/cgroup/memory/a");
}

TEST_F(UsualPlaceTest, OtherFileSystemIsNotUsed) {
  for (const long type : {long{TMPFS_MAGIC}, long{CGROUP_SUPER_MAGIC}}) {
    FakedFiles().file_system = type;
    EXPECT_EQ(Find(), "/mnt/a") << type;
  }
}

// Of a part of the hierarchy, another directory is mounted.
TEST_F(UsualPlaceTest, PartOfHierarchyIsNotUsed) {
  for (const ino_t inode : {0, 2, 100}) {
    FakedFiles().inode = inode;
    EXPECT_EQ(Find(), "/mnt/a") << inode;
  }
}

TEST_F(UsualPlaceTest, OtherNamespaceIsNotUsed) {
  for (const std::string link : {"", "cgroup:[4026531836]", "cgroup:[4026531835]1", "cgroup:["}) {
    FakedFiles().link_target = link;
    EXPECT_EQ(Find(), "/mnt/a") << link;
  }
}

TEST_F(UsualPlaceTest, WhatCannotBeCheckedIsNotUsed) {
  for (bool FilesFake::*const fails :
       {&FilesFake::fstatfs_fails, &FilesFake::fstat_fails, &FilesFake::readlink_fails}) {
    FakedFiles().*fails = true;
    EXPECT_EQ(Find(), "/mnt/a");
    FakedFiles().*fails = false;
  }
}

TEST_F(UsualPlaceTest, GroupOfAnotherRootIsSearchedInTheMountTable) {
  const std::string root = tree_.root();
  FakedFiles().root = "/";  // where "//proc" is this machine's
  bool failed = false;
  const auto group = FindMemoryCgroup(root, failed);
  ASSERT_TRUE(group);
  EXPECT_FALSE(group->top_is_root);
  EXPECT_EQ(group->directory.view(), root + "/mnt/a");
}

// The root "/." names this machine too, but switches the shortcut off.
bool ShortcutAndMountTableAgree() {
  bool failed = false;
  const auto quickly = FindMemoryCgroup("", failed);
  const auto searched = FindMemoryCgroup("/.", failed);
  if (failed || !quickly || !searched) {
    return !failed && quickly.has_value() == searched.has_value();
  }
  return quickly->version == searched->version && quickly->top_length + 2 == searched->top_length &&
         "/." + std::string(quickly->directory.view()) == searched->directory.view();
}

TEST(CgroupLocationOfThisMachineTest, UsualPlaceAndMountTableAgree) {
  EXPECT_TRUE(ShortcutAndMountTableAgree());
}

// In a cgroup namespace, paths are relative to the group in which the namespace was created.
TEST(CgroupLocationOfThisMachineTest, UsualPlaceAndMountTableAgreeInCgroupNamespace) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "needs root, to create a cgroup namespace";
  }
  const auto outcome = RunApart([] {
    if (unshare(CLONE_NEWCGROUP) != 0 || !ShortcutAndMountTableAgree()) {
      throw std::runtime_error("they differ");
    }
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

}  // namespace
}  // namespace kestrel::tests

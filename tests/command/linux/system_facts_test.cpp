// Recorded trees of /sys and /dev: what they show, and what is missing in them.

#include "command/system_facts.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/machine_tree.h"

namespace kestrel::tests {
namespace {

namespace fs = std::filesystem;
using command::FileState;

void Require(bool condition, const char* what) {
  if (!condition) {
    throw std::runtime_error(what);
  }
}

// Only root may become another user, and not where it is the only user of a container.
bool MayBecomeAnotherUser() {
  return RunApart([] {
           Require(setgroups(0, nullptr) == 0, "setgroups");
           Require(setgid(65534) == 0 && setuid(65534) == 0, "another user");
         })
      .ran;
}

class SystemFactsTest : public testing::Test {
 protected:
  // Adds a card with its driver, as Linux 6.1 with amdgpu lays it out.
  void AddCard(const std::string& name, const std::string& slot, const std::string& vendor,
               const std::string& driver) {
    const std::string device = "/sys/devices/pci0000:00/" + slot;
    tree_.Write(device + "/vendor", vendor + "\n");
    fs::create_directories(tree_.root() + "/sys/class/drm/" + name);
    fs::create_symlink("../../../devices/pci0000:00/" + slot,
                       tree_.root() + "/sys/class/drm/" + name + "/device");
    if (!driver.empty()) {
      fs::create_symlink("../../../bus/pci/drivers/" + driver, tree_.root() + device + "/driver");
    }
  }

  void AddFigure(const std::string& slot, const std::string& file, const std::string& figure) {
    tree_.Write("/sys/devices/pci0000:00/" + slot + "/" + file, figure + "\n");
  }

  MachineTree tree_;
};

TEST_F(SystemFactsTest, CardHasTheKernelsFigures) {
  AddCard("card0", "0000:03:00.0", "0x1002", "amdgpu");
  AddFigure("0000:03:00.0", "mem_info_vram_total", "8573157376");
  AddFigure("0000:03:00.0", "mem_info_vram_used", "1073741824");
  AddFigure("0000:03:00.0", "mem_info_gtt_total", "16809652224");
  AddFigure("0000:03:00.0", "mem_info_gtt_used", "12345678");
  const auto cards = command::ReadCards(tree_.root());
  ASSERT_EQ(cards.size(), 1U);
  EXPECT_EQ(cards[0].name, "card0");
  EXPECT_EQ(cards[0].slot, "0000:03:00.0");
  EXPECT_EQ(cards[0].driver, "amdgpu");
  EXPECT_EQ(cards[0].vram_total, 8573157376U);
  EXPECT_EQ(cards[0].vram_used, 1073741824U);
  EXPECT_EQ(cards[0].gtt_total, 16809652224U);
  EXPECT_EQ(cards[0].gtt_used, 12345678U);
}

TEST_F(SystemFactsTest, CardWithoutDriverHasNoFigures) {
  AddCard("card0", "0000:03:00.0", "0x1002", "");
  const auto cards = command::ReadCards(tree_.root());
  ASSERT_EQ(cards.size(), 1U);
  EXPECT_EQ(cards[0].driver, "");
  EXPECT_EQ(cards[0].vram_total, std::nullopt);
}

TEST_F(SystemFactsTest, DamagedFigureIsNotReported) {
  AddCard("card0", "0000:03:00.0", "0x1002", "amdgpu");
  AddFigure("0000:03:00.0", "mem_info_vram_total", "12x");
  EXPECT_EQ(command::ReadCards(tree_.root())[0].vram_total, std::nullopt);
}

TEST_F(SystemFactsTest, OtherMakersAndConnectorsAreNoCards) {
  AddCard("card0", "0000:00:02.0", "0x8086", "i915");
  AddCard("card1", "0000:03:00.0", "0x1002", "amdgpu");
  AddCard("card1-DP-1", "0000:03:00.0", "0x1002", "");
  const auto cards = command::ReadCards(tree_.root());
  ASSERT_EQ(cards.size(), 1U);
  EXPECT_EQ(cards[0].name, "card1");
}

TEST_F(SystemFactsTest, CardsAreInTheOrderOfTheirNumbers) {
  for (const char* number : {"10", "2", "1"}) {
    AddCard(std::string("card") + number, std::string("0000:0") + number + ":00.0", "0x1002",
            "amdgpu");
  }
  const auto cards = command::ReadCards(tree_.root());
  ASSERT_EQ(cards.size(), 3U);
  EXPECT_EQ(cards[0].name, "card1");
  EXPECT_EQ(cards[1].name, "card2");
  EXPECT_EQ(cards[2].name, "card10");
}

TEST_F(SystemFactsTest, MachineWithoutSysHasNoCards) {
  EXPECT_TRUE(command::ReadCards(tree_.root()).empty());
}

TEST_F(SystemFactsTest, MissingDeviceFilesAreNamed) {
  const auto files = command::ReadDeviceFiles(tree_.root());
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0].path, "/dev/kfd");
  EXPECT_EQ(files[0].state, FileState::kMissing);
  EXPECT_EQ(files[1].path, "/dev/dri/renderD128");
  EXPECT_EQ(files[1].state, FileState::kMissing);
}

TEST_F(SystemFactsTest, EveryRenderNodeIsOpened) {
  tree_.Write("/dev/kfd", "");
  tree_.Write("/dev/dri/card0", "");
  tree_.Write("/dev/dri/renderD129", "");
  tree_.Write("/dev/dri/renderD128", "");
  const auto files = command::ReadDeviceFiles(tree_.root());
  ASSERT_EQ(files.size(), 3U);
  for (const auto& file : files) {
    EXPECT_EQ(file.state, FileState::kUsable) << file.path;
    EXPECT_TRUE(file.in_group) << file.path;
  }
  EXPECT_EQ(files[1].path, "/dev/dri/renderD128");
  EXPECT_EQ(files[2].path, "/dev/dri/renderD129");
}

TEST_F(SystemFactsTest, LinuxHasDeviceFiles) { EXPECT_TRUE(command::HasDeviceFiles()); }

TEST_F(SystemFactsTest, GroupMayUseAFileThatItMayBothReadAndWrite) {
  tree_.Write("/dev/kfd", "");
  const auto may_use = [this](mode_t mode) {
    chmod((tree_.root() + "/dev/kfd").c_str(), mode);
    return command::ReadDeviceFiles(tree_.root())[0].group_may_use;
  };
  EXPECT_TRUE(may_use(0660));
  EXPECT_FALSE(may_use(0640));
  EXPECT_FALSE(may_use(0620));
  EXPECT_FALSE(may_use(0606));
}

TEST_F(SystemFactsTest, FileIsOpenedWhereStandardInputIsClosedAndClosedAgain) {
  tree_.Write("/dev/kfd", "");
  const auto outcome = RunApart([this] {
    close(STDIN_FILENO);
    Require(command::ReadDeviceFiles(tree_.root())[0].state == FileState::kUsable, "not opened");
    Require(dup(STDERR_FILENO) == STDIN_FILENO, "not closed");  // the lowest that is free
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

// Whether the process is in the group depends on all its groups. Other users than root cannot give
// a file to a group that they are not in.
TEST_F(SystemFactsTest, GroupsOfTheProcessAreItsOwnAndTheSupplementaryOnes) {
  if (!MayBecomeAnotherUser()) {
    tree_.Write("/dev/kfd", "");
    EXPECT_TRUE(command::ReadDeviceFiles(tree_.root())[0].in_group);
    return;
  }
  tree_.Write("/dev/kfd", "");
  fs::permissions(tree_.root(), fs::perms::others_exec, fs::perm_options::add);
  constexpr gid_t kUnnamed = 54321;
  const auto in_group = [this](gid_t file, gid_t own, const std::vector<gid_t>& supplementary) {
    Require(chown((tree_.root() + "/dev/kfd").c_str(), 0, file) == 0, "chown");
    Require(setgroups(supplementary.size(), supplementary.data()) == 0, "setgroups");
    Require(setegid(own) == 0, "setegid");
    const auto read = command::ReadDeviceFiles(tree_.root())[0];
    Require(setegid(0) == 0, "setegid back");
    Require(read.group == (file == 0 ? "root" : std::to_string(file)), "another group");
    return read.in_group;
  };
  const auto outcome = RunApart([&] {
    Require(in_group(kUnnamed, kUnnamed, {}), "not in its own group");
    Require(in_group(kUnnamed, 0, {1, kUnnamed, 2}), "not in a supplementary group");
    Require(!in_group(kUnnamed, 0, {1, 2}), "in a group of others");
    Require(!in_group(0, kUnnamed, {}), "in the group of root");
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

// A directory cannot be opened for writing, whoever asks: so root sees a failure too.
TEST_F(SystemFactsTest, FileThatCannotBeOpenedIsDeniedWithItsReason) {
  fs::create_directories(tree_.root() + "/dev/kfd");
  const auto files = command::ReadDeviceFiles(tree_.root());
  EXPECT_EQ(files[0].state, FileState::kDenied);
  EXPECT_EQ(files[0].error, "Is a directory");
}

TEST_F(SystemFactsTest, FileOfAnotherGroupIsDenied) {
  if (geteuid() != 0) {
    // Without root, no other user can be taken on; the mode 000 is refused as well.
    tree_.Write("/dev/kfd", "");
    chmod((tree_.root() + "/dev/kfd").c_str(), 0);
    EXPECT_EQ(command::ReadDeviceFiles(tree_.root())[0].state, FileState::kDenied);
    return;
  }
  if (!MayBecomeAnotherUser()) {
    GTEST_SKIP() << "needs a second user";
  }
  tree_.Write("/dev/kfd", "");
  chmod((tree_.root() + "/dev/kfd").c_str(), 0660);
  chmod((tree_.root() + "/dev").c_str(), 0755);  // whatever the umask
  chmod(tree_.root().c_str(), 0755);
  // From within the tree: the folders above it may be closed to other users.
  const auto outcome = RunApart([this] {
    Require(chdir(tree_.root().c_str()) == 0 && setgid(65534) == 0 && setuid(65534) == 0,
            "not another user");
    const auto file = command::ReadDeviceFiles(".")[0];
    if (file.state != FileState::kDenied || file.error != "Permission denied" ||
        file.group != "root" || !file.group_may_use) {
      throw std::runtime_error("not denied");
    }
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

}  // namespace
}  // namespace kestrel::tests

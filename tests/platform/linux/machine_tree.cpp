#include "tests/platform/linux/machine_tree.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>

namespace kestrel::tests {

MachineTree::MachineTree() {
  std::string name = (std::filesystem::temp_directory_path() / "kestrelcore-XXXXXX").string();
  EXPECT_NE(mkdtemp(name.data()), nullptr);
  root_ = name;
}

MachineTree::~MachineTree() {
  std::error_code ignored;
  std::filesystem::remove_all(root_, ignored);
}

void MachineTree::Write(const std::string& path, const std::string& text) const {
  const std::filesystem::path file = root_.string() + path;
  std::filesystem::create_directories(file.parent_path());
  std::ofstream stream(file, std::ios::binary);
  stream << text << std::flush;
  EXPECT_TRUE(stream.good()) << file;
}

void MachineTree::Remove(const std::string& path) const {
  std::filesystem::remove(root_.string() + path);
}

void MachineTree::Link(const std::string& path, const std::string& target) const {
  const std::filesystem::path link = root_.string() + path;
  std::filesystem::create_directories(link.parent_path());
  std::filesystem::create_symlink(target, link);
}

void MachineTree::MakeUnreadable(const std::string& path) const {
  Remove(path);
  EXPECT_TRUE(std::filesystem::create_directories(root_.string() + path)) << path;
}

std::string MountV2(const std::string& root, const std::string& point) {
  return "30 23 0:26 " + root + " " + point +
         " rw,nosuid,nodev,noexec,relatime shared:9 - cgroup2 cgroup2 rw,nsdelegate\n";
}

std::string MountV1(const std::string& root, const std::string& point) {
  return "35 31 0:32 " + root + " " + point + " rw,relatime - cgroup cgroup rw,memory\n";
}

}  // namespace kestrel::tests

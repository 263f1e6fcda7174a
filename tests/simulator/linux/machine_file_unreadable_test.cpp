#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "tests/simulator/complaint_about_file.h"

namespace kestrel::tests {

namespace {

// Permissions do not stop root, but no process exceeds its number of open files.
TEST(MachineFileUnreadableTest, FileThatCannotBeOpenedIsRefused) {
  const std::string path = "machine_file_unreadable_test.toml";
  std::ofstream(path, std::ios::binary) << "device = []\n";
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{0, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const std::string complaint = ComplaintAboutFile(path);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_EQ(complaint, path + ": cannot be read");
  std::remove(path.c_str());
}

// The kernel lists the memory of a process as a regular file. Nothing is mapped at its start.
TEST(MachineFileUnreadableTest, FileThatCannotBeReadIsRefused) {
  EXPECT_EQ(ComplaintAboutFile("/proc/self/mem"), "/proc/self/mem: cannot be read");
}

}  // namespace

}  // namespace kestrel::tests

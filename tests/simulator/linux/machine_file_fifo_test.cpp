#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "tests/simulator/complaint_about_file.h"

namespace kestrel::tests {

namespace {

// An attempt to read it would wait for a writer.
TEST(MachineFileFifoTest, FifoIsRefused) {
  const std::string path = "machine_file_fifo_test.toml";
  unlink(path.c_str());
  ASSERT_EQ(mkfifo(path.c_str(), S_IRUSR | S_IWUSR), 0);
  EXPECT_EQ(ComplaintAboutFile(path), path + ": is no regular file");
  unlink(path.c_str());
}

}  // namespace

}  // namespace kestrel::tests

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "simulator/machine_file.h"

namespace kestrel::tests {

namespace {

using simulator::MachineFileError;
using simulator::ReadMachineFile;

// An attempt to read it would wait for a writer.
TEST(MachineFileFifoTest, FifoIsRefused) {
  const std::string path = "machine_file_fifo_test.toml";
  unlink(path.c_str());
  ASSERT_EQ(mkfifo(path.c_str(), S_IRUSR | S_IWUSR), 0);
  try {
    static_cast<void>(ReadMachineFile(path));
    ADD_FAILURE() << "it was read";
  } catch (const MachineFileError& error) {
    EXPECT_EQ(error.what(), path + ": is no regular file");
  }
  unlink(path.c_str());
}

}  // namespace

}  // namespace kestrel::tests

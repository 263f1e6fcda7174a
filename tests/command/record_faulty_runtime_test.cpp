// Over a runtime that writes its figures although it fails.

#include <gtest/gtest.h>

#include <string>

#include "command/record.h"
#include "tests/fakes/hip_fake.h"

namespace kestrel::tests {
namespace {

class RecordFaultyRuntimeTest : public testing::Test {
 protected:
  RecordFaultyRuntimeTest() {
    Hip() = {};
    Hip().device_count = 1;
    Hip().properties_memory = 30;
    Hip().free_memory = 10;
    Hip().total_memory = 20;
  }

  // The text without its first line, which has the version.
  static std::string Recorded() {
    const std::string text = command::RecordMachine().text;
    return text.substr(text.find('\n') + 1);
  }
};

TEST_F(RecordFaultyRuntimeTest, FiguresOfCallsThatSucceedAreRecorded) {
  EXPECT_EQ(Recorded(),
            "\n[[device]]\nname = \"\"\narch = \"\"\nintegrated = false\ntotal_memory = 20\n"
            "free_memory = 10\nproperties_memory = 30\n");
}

TEST_F(RecordFaultyRuntimeTest, FiguresOfFailedCallsAreNotRecorded) {
  Hip().statuses = {{"hipGetDeviceProperties", hipErrorUnknown},
                    {"hipMemGetInfo", hipErrorUnknown}};
  EXPECT_EQ(Recorded().find("\n[[device]]\nname = \"\"\narch = \"\"\nintegrated = false\n"
                            "total_memory = 0\nfree_memory = 0\nproperties_memory = 0\n"),
            0U)
      << Recorded();
}

TEST_F(RecordFaultyRuntimeTest, CountOfAFailedCallIsNotRecorded) {
  Hip().statuses = {{"hipGetDeviceCount", hipErrorNoDevice}};
  EXPECT_EQ(Recorded(), "\ndevice = []\n");
}

TEST_F(RecordFaultyRuntimeTest, CountBelowZeroIsRecordedAsClaimed) {
  Hip().device_count = -1;
  EXPECT_EQ(Recorded(), "\ndevice = []\nclaimed_device_count = -1\n");
}

}  // namespace
}  // namespace kestrel::tests

// Over a runtime that writes its figures although it fails.

#include <gtest/gtest.h>

#include <cstdint>

#include "c/kestrelcore.h"
#include "tests/c/records.h"
#include "tests/fakes/hip_fake.h"

namespace kestrel::tests {
namespace {

class VramFaultyRuntimeTest : public testing::Test {
 protected:
  VramFaultyRuntimeTest() {
    Hip() = {};
    Hip().device_count = 2;
    Hip().free_memory = 10;
    Hip().total_memory = 20;
  }

  kestrel_result result_ = UsedResult();
  std::uint64_t free_ = 77;
  std::uint64_t total_ = 77;
};

TEST_F(VramFaultyRuntimeTest, CountOfAFailedCallIsNone) {
  Hip().statuses = {{"hipGetDeviceCount", hipErrorUnknown}};
  EXPECT_EQ(kestrel_gpu_memory(1, &free_, &total_, &result_), KESTREL_NO_DEVICES);
  EXPECT_EQ(free_, 0U);
}

TEST_F(VramFaultyRuntimeTest, CountBelowZeroIsNone) {
  Hip().device_count = -1;
  EXPECT_EQ(kestrel_gpu_memory(0, &free_, &total_, &result_), KESTREL_NO_DEVICES);
  EXPECT_EQ(kestrel_machine_physical_vram(&total_, &result_), KESTREL_NO_DEVICES);
  EXPECT_STREQ(result_.message, "No HIP devices found");
  EXPECT_EQ(total_, 0U);
}

TEST_F(VramFaultyRuntimeTest, FiguresOfAFailedCallAreNotReported) {
  Hip().statuses = {{"hipMemGetInfo", hipErrorOutOfMemory}};
  EXPECT_EQ(kestrel_gpu_memory(1, &free_, &total_, &result_), KESTREL_DEVICE_QUERY_FAILED);
  EXPECT_STREQ(result_.message, "hipMemGetInfo failed for device 1: out of memory");
  EXPECT_EQ(free_, 0U);
  EXPECT_EQ(total_, 0U);
}

}  // namespace
}  // namespace kestrel::tests

#include <gtest/gtest.h>

#include <array>

#include "tests/hip_binding/operations.h"

// A program of its own, since operations that are bound once stay so.

namespace kestrel::tests {
namespace {

constexpr int kNoDevice = 100;  // hipErrorNoDevice

TEST(OperationsWithoutRuntimeTest, DeviceCountFailsWithNoDevice) {
  int count = 7;
  EXPECT_EQ(hipGetDeviceCount(&count), kNoDevice);
  EXPECT_EQ(count, 7);
}

TEST(OperationsWithoutRuntimeTest, DeviceFunctionsFailWithNoDevice) {
  std::array<char, 2048> record{};
  std::size_t free = 7;
  std::size_t total = 7;
  EXPECT_EQ(hipSetDevice(0), kNoDevice);
  EXPECT_EQ(hipMemGetInfo(&free, &total), kNoDevice);
  EXPECT_EQ(hipGetDeviceProperties(record.data(), 0), kNoDevice);
  EXPECT_EQ(hipGetDevicePropertiesR0600(record.data(), 0), kNoDevice);
}

TEST(OperationsWithoutRuntimeTest, ErrorTextNamesTheCause) {
  EXPECT_STREQ(hipGetErrorString(kNoDevice), "no HIP runtime was found");
}

}  // namespace
}  // namespace kestrel::tests

// No test of this program installs a machine.

#include <gtest/gtest.h>
#include <hip/hip_runtime_api.h>

#include "simulator/control.h"

namespace kestrel::tests {

namespace {

TEST(StartInProcessTest, BeforeAnyMachineIsInstalledThereIsNoDevice) {
  int count = -1;
  EXPECT_EQ(hipGetDeviceCount(&count), hipErrorNoDevice);
  EXPECT_EQ(count, 0);
}

TEST(StartInProcessTest, BeforeAnyMachineIsInstalledTheReleaseIsHip5) {
  int version = 0;
  EXPECT_EQ(hipRuntimeGetVersion(&version), hipSuccess);
  EXPECT_EQ(version, simulator::kHip5);
}

TEST(StartInProcessTest, BeforeAnyMachineIsInstalledNoCallIsRecorded) {
  int count = 0;
  static_cast<void>(hipGetDeviceCount(&count));
  EXPECT_TRUE(simulator::RecordedCalls().empty());
}

}  // namespace

}  // namespace kestrel::tests

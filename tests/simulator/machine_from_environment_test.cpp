#include "simulator/machine_from_environment.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace kestrel::tests {

namespace {

using simulator::Machine;
using simulator::MachineFrom;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

class MachineFromEnvironmentTest : public testing::Test {
 protected:
  // The test's own name, since several run at the same time in one folder.
  const std::string path_ =
      std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) + ".toml";

  void SetUp() override {
    std::ofstream(path_, std::ios::binary)
        << "[[device]]\nname = 'a card'\narch = 'gfx1100'\nintegrated = false\n"
           "total_memory = 10\nfree_memory = 5\ncount = 2\n";
  }

  void TearDown() override { std::remove(path_.c_str()); }
};

TEST_F(MachineFromEnvironmentTest, WithoutFileThereIsNoDevice) {
  CaptureStderr();
  const Machine machine = MachineFrom({});
  EXPECT_EQ(GetCapturedStderr(), "");
  EXPECT_TRUE(machine.devices.empty());
  EXPECT_TRUE(machine.faults.empty());
}

TEST_F(MachineFromEnvironmentTest, EmptyNameIsNoFile) {
  CaptureStderr();
  const Machine machine = MachineFrom({"", {}, {}, true});
  EXPECT_EQ(GetCapturedStderr(), "");
  EXPECT_TRUE(machine.devices.empty());
  EXPECT_TRUE(machine.faults.empty());
}

TEST_F(MachineFromEnvironmentTest, FileIsRead) {
  EXPECT_EQ(MachineFrom({path_, {}, {}, true}).devices.size(), 2U);
}

TEST_F(MachineFromEnvironmentTest, MaskHidesDevicesOfTheFile) {
  EXPECT_EQ(MachineFrom({path_, {}, "1", true}).devices.size(), 1U);
  EXPECT_EQ(MachineFrom({path_, "", {}, true}).devices.size(), 0U);
}

TEST_F(MachineFromEnvironmentTest, BrokenFileIsReportedAndFailsEveryCall) {
  CaptureStderr();
  const Machine machine = MachineFrom({"missing.toml", {}, {}, true});
  EXPECT_EQ(GetCapturedStderr(), "Simulated HIP runtime: missing.toml: cannot be read\n");
  EXPECT_TRUE(machine.devices.empty());
  ASSERT_EQ(machine.faults.size(), 13U) << "every operation that returns a status";
  for (const auto& fault : machine.faults) {
    EXPECT_EQ(fault.status, hipErrorInvalidConfiguration) << fault.operation;
  }
}

}  // namespace

}  // namespace kestrel::tests

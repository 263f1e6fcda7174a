#include "simulator/environment.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "simulator/machine_from_environment.h"

namespace kestrel::tests {

namespace {

using simulator::Environment;
using simulator::MachineFromEnvironment;
using simulator::ReadEnvironment;

class EnvironmentTest : public testing::Test {
 protected:
  EnvironmentTest() { Clear(); }
  ~EnvironmentTest() override { Clear(); }

  static void Clear() {
    unsetenv("KESTREL_SIM_MACHINE");
    unsetenv("ROCR_VISIBLE_DEVICES");
    unsetenv("HIP_VISIBLE_DEVICES");
  }
};

TEST_F(EnvironmentTest, VariablesAreRead) {
  setenv("KESTREL_SIM_MACHINE", "a.toml", 1);
  setenv("ROCR_VISIBLE_DEVICES", "1", 1);
  setenv("HIP_VISIBLE_DEVICES", "2", 1);
  const Environment environment = ReadEnvironment();
  EXPECT_EQ(environment.machine_file, "a.toml");
  EXPECT_EQ(environment.rocr_mask, "1");
  EXPECT_EQ(environment.hip_mask, "2");
  EXPECT_TRUE(environment.hip_mask_orders_devices);
}

TEST_F(EnvironmentTest, VariableThatIsNotSetDiffersFromAnEmptyOne) {
  EXPECT_FALSE(ReadEnvironment().machine_file);
  EXPECT_FALSE(ReadEnvironment().rocr_mask);
  EXPECT_FALSE(ReadEnvironment().hip_mask);
  setenv("ROCR_VISIBLE_DEVICES", "", 1);
  EXPECT_EQ(ReadEnvironment().rocr_mask, "");
}

TEST_F(EnvironmentTest, MachineIsThatOfTheFileThatIsNamed) {
  EXPECT_TRUE(MachineFromEnvironment().faults.empty());
  setenv("KESTREL_SIM_MACHINE", "missing.toml", 1);
  testing::internal::CaptureStderr();
  EXPECT_FALSE(MachineFromEnvironment().faults.empty());
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Simulated HIP runtime: missing.toml: cannot be read\n");
}

}  // namespace

}  // namespace kestrel::tests

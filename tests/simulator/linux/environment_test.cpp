#include "simulator/environment.h"

#include <gtest/gtest.h>
#include <stdlib.h>

namespace kestrel::tests {

namespace {

using simulator::Environment;
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

}  // namespace

}  // namespace kestrel::tests

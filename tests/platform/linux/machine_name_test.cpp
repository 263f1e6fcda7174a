#include "platform/linux/machine_name.h"

#include <gtest/gtest.h>

namespace kestrel::tests {
namespace {

using platform::ArchitectureOfMachineName;

TEST(MachineNameTest, X8664AndArmHaveTheirCodes) {
  EXPECT_EQ(ArchitectureOfMachineName("x86_64"), 9);
  EXPECT_EQ(ArchitectureOfMachineName("aarch64"), 12);
  EXPECT_EQ(ArchitectureOfMachineName("armv7l"), 5);
  EXPECT_EQ(ArchitectureOfMachineName("armv8b"), 5);
  EXPECT_EQ(ArchitectureOfMachineName("arm"), 5);
}

TEST(MachineNameTest, EveryGenerationOf32BitX86HasItsCode) {
  for (const char* const machine : {"i386", "i486", "i586", "i686"}) {
    EXPECT_EQ(ArchitectureOfMachineName(machine), 0) << machine;
  }
}

TEST(MachineNameTest, OtherNamesAreUnknown) {
  for (const char* const machine : {"", "i", "ia64", "ppc64le", "riscv64", "x86_64 ", "x86", "i86",
                                    "i6866", "j686", "ar", "Arm"}) {
    EXPECT_EQ(ArchitectureOfMachineName(machine), 0xFFFF) << machine;
  }
}

}  // namespace
}  // namespace kestrel::tests

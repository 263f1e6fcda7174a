#include "command/fits.h"

#include <gtest/gtest.h>

#include "tests/command/machine.h"

namespace kestrel::tests {
namespace {

using command::RunFits;

class FitsTest : public testing::Test {
 protected:
  simulator::Machine machine_ = InstallMachine();
};

TEST_F(FitsTest, SizeThatFitsSaysWhatIsLeft) {
  const auto outcome = RunFits({5 * kGiB, false, 0});
  EXPECT_EQ(outcome.status, command::kSuccess);
  EXPECT_EQ(outcome.output,
            "fits: 5.00 GiB leaves 3.00 GiB (6.00 GiB available and 2.00 GiB committable beyond "
            "that, limited by the machine's free memory)\n");
  EXPECT_EQ(outcome.error, "");
}

TEST_F(FitsTest, SizeThatWouldFailSaysHowMuchIsMissing) {
  EXPECT_EQ(RunFits({8 * kGiB, false, 0}).status, command::kSuccess);
  const auto outcome = RunFits({8 * kGiB + 1, false, 0});
  EXPECT_EQ(outcome.status, command::kWouldFail);
  EXPECT_EQ(outcome.output,
            "would fail: 8.00 GiB is 1 B too much (6.00 GiB available and 2.00 GiB committable "
            "beyond that, limited by the machine's free memory)\n");
  EXPECT_EQ(outcome.error, "");
}

TEST_F(FitsTest, GroupThatDecidesIsNamed) {
  Platform().memory.limit = platform::MemoryLimit::kMemoryGroup;
  Platform().group_directory = "/sys/fs/cgroup/box";
  EXPECT_NE(RunFits({1, false, 0}).output.find("limited by memory group /sys/fs/cgroup/box)"),
            std::string::npos);
}

TEST_F(FitsTest, MemoryThatCannotBeReadIsUndetermined) {
  Platform().Fail("QueryMemoryLimit");
  const auto outcome = RunFits({1, false, 0});
  EXPECT_EQ(outcome.status, command::kUndetermined);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.error,
            "kestrel fits: cannot be determined: Failed to get global memory status.");
}

TEST_F(FitsTest, VramIsThatOfTheDevice) {
  EXPECT_EQ(RunFits({7 * kGiB, true, 0}).output,
            "fits: 7.00 GiB leaves 0 B (7.00 GiB free on device 0)\n");
  const auto outcome = RunFits({7 * kGiB, true, 1});
  EXPECT_EQ(outcome.status, command::kWouldFail);
  EXPECT_EQ(outcome.output,
            "would fail: 7.00 GiB is 4.00 GiB too much (3.00 GiB free on device 1)\n");
}

TEST_F(FitsTest, VramOfNoDeviceIsUndetermined) {
  EXPECT_EQ(RunFits({1, true, 2}).status, command::kUndetermined);
  simulator::Install({});
  const auto outcome = RunFits({1, true, 0});
  EXPECT_EQ(outcome.status, command::kUndetermined);
  EXPECT_EQ(outcome.error, "kestrel fits: cannot be determined: No HIP devices found");
}

TEST_F(FitsTest, VramThatCannotBeReadIsUndetermined) {
  machine_.faults = {{"hipMemGetInfo", 1, std::nullopt, hipErrorUnknown}};
  simulator::Install(machine_);
  EXPECT_EQ(RunFits({1, true, 1}).status, command::kUndetermined);
  EXPECT_EQ(RunFits({1, true, 0}).status, command::kSuccess);
}

}  // namespace
}  // namespace kestrel::tests

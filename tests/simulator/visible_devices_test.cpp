#include "simulator/visible_devices.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestrel::tests {

namespace {

using simulator::DevicesOfHipMask;
using simulator::DevicesOfRocrMask;
using simulator::Environment;
using simulator::Machine;
using simulator::VisiblePart;

using Indices = std::vector<int>;

TEST(VisibleDevicesTest, MaskSelectsDevicesInItsOrder) {
  EXPECT_EQ(DevicesOfRocrMask("2,0", 4), (Indices{2, 0}));
  EXPECT_EQ(DevicesOfHipMask("2,0", 4), (Indices{2, 0}));
}

TEST(VisibleDevicesTest, IndexMayHaveTwoDigits) {
  EXPECT_EQ(DevicesOfRocrMask("10,9", 12), (Indices{10, 9}));
  EXPECT_EQ(DevicesOfHipMask("10,9", 12), (Indices{10, 9}));
}

TEST(VisibleDevicesTest, FirstInvalidEntryEndsTheMask) {
  for (const char* mask : {"1,4,0", "1,-1,0", "1,,0", "1,x,0", "1,0x,0", "1,GPU-1234567890,0"}) {
    EXPECT_EQ(DevicesOfRocrMask(mask, 4), Indices{1}) << mask;
    EXPECT_EQ(DevicesOfHipMask(mask, 4), Indices{1}) << mask;
  }
}

TEST(VisibleDevicesTest, MinusOneHidesAll) {
  EXPECT_EQ(DevicesOfRocrMask("-1", 4), Indices{});
  EXPECT_EQ(DevicesOfHipMask("-1", 4), Indices{});
}

TEST(VisibleDevicesTest, EmptyMaskHidesAllForRocrAndNoneForHip) {
  EXPECT_EQ(DevicesOfRocrMask("", 2), Indices{});
  EXPECT_EQ(DevicesOfHipMask("", 2), (Indices{0, 1}));
}

TEST(VisibleDevicesTest, RepeatedIndexEndsTheRocrMaskAndCountsOnceForHip) {
  EXPECT_EQ(DevicesOfRocrMask("1,1,0", 2), Indices{1});
  EXPECT_EQ(DevicesOfHipMask("1,1,0", 2), (Indices{1, 0}));
}

TEST(VisibleDevicesTest, HipWantsPlainDecimalAndRocrAnyNumber) {
  for (const char* mask : {"0x1", "01", " 1", "+1"}) {
    EXPECT_EQ(DevicesOfRocrMask(mask, 2), Indices{1}) << mask;
    EXPECT_EQ(DevicesOfHipMask(mask, 2), Indices{}) << mask;
  }
}

TEST(VisibleDevicesTest, NumberBeyondAnyIndexHidesTheRest) {
  EXPECT_EQ(DevicesOfRocrMask("0,99999999999999999999", 2), Indices{0});
  EXPECT_EQ(DevicesOfHipMask("0,4294967296", 2), Indices{0});
}

Machine MachineOfThree() {
  Machine machine;
  for (const char* name : {"a", "b", "c"}) {
    machine.devices.push_back({name, "gfx1100", 0, 10, 5, 7});
  }
  return machine;
}

std::string Names(const Machine& machine) {
  std::string names;
  for (const auto& device : machine.devices) {
    names += device.name;
  }
  return names;
}

TEST(VisibleDevicesTest, WithoutMasksEveryDeviceIsVisible) {
  EXPECT_EQ(Names(VisiblePart(MachineOfThree(), {})), "abc");
}

TEST(VisibleDevicesTest, HipMaskCountsWhatRocrMaskLeaves) {
  EXPECT_EQ(Names(VisiblePart(MachineOfThree(), {{}, "2,1", "1", true})), "b");
  EXPECT_EQ(Names(VisiblePart(MachineOfThree(), {{}, "2", "1", true})), "");
}

TEST(VisibleDevicesTest, HipMaskOrdersDevicesOnlyWhereTheSystemDoes) {
  EXPECT_EQ(Names(VisiblePart(MachineOfThree(), {{}, {}, "2,0", true})), "ca");
  EXPECT_EQ(Names(VisiblePart(MachineOfThree(), {{}, {}, "2,0", false})), "ac");
}

TEST(VisibleDevicesTest, FaultFollowsItsDevice) {
  Machine machine = MachineOfThree();
  machine.faults = {{"hipSetDevice", 0, {}, hipErrorUnknown},
                    {"hipSetDevice", 2, {}, hipErrorNotReady},
                    {"hipInit", {}, {}, hipErrorUnknown}};
  const Machine visible = VisiblePart(machine, {{}, {}, "1,2", true});
  ASSERT_EQ(visible.faults.size(), 2U);
  EXPECT_EQ(visible.faults[0].device, 1);
  EXPECT_EQ(visible.faults[0].status, hipErrorNotReady);
  EXPECT_EQ(visible.faults[1].operation, "hipInit");
}

TEST(VisibleDevicesTest, FaultOfClaimedDeviceAndClaimedCountStay) {
  Machine machine = MachineOfThree();
  machine.claimed_device_count = 5;
  machine.faults = {{"hipSetDevice", 3, {}, hipErrorUnknown},
                    {"hipSetDevice", 4, {}, hipErrorUnknown}};
  const Machine visible = VisiblePart(machine, {{}, {}, "0", true});
  EXPECT_EQ(visible.claimed_device_count, 5);
  ASSERT_EQ(visible.faults.size(), 2U);
  EXPECT_EQ(visible.faults[0].device, 3);
  EXPECT_EQ(visible.faults[1].device, 4);
}

}  // namespace

}  // namespace kestrel::tests

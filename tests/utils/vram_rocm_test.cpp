#include "utils/vram_rocm.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "simulator/control.h"
#include "tests/fakes/cerr_recorder.h"
#include "tests/fakes/sink_recorder.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::getAvailableVRAM_ROCm;
using kestrel_utils::getMachinePhysicalVRAM_ROCm;
using kestrel_utils::kStandardError;
using simulator::CurrentDevice;
using simulator::Install;
using simulator::Machine;
using simulator::RecordedCalls;
using Calls = std::vector<std::string>;

// Device i has i+1 GiB, i+1 MiB of it free, and i+1 GiB less a byte in its properties.
Machine MachineWith(int device_count) {
  Machine machine;
  for (int i = 0; i < device_count; ++i) {
    const auto number = static_cast<std::uint64_t>(i + 1);
    machine.devices.push_back({"card", "gfx", 0, number << 30, number << 20, (number << 30) - 1});
  }
  return machine;
}

class VramRocmTest : public testing::Test {
 protected:
  CerrRecorder cerr_;
};

TEST_F(VramRocmTest, TotalOfAllDevicesIsTheSumOfTheirProperties) {
  Install(MachineWith(3));
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), (6LL << 30) - 3);
  EXPECT_EQ(RecordedCalls(), (Calls{"hipGetDeviceCount()", "hipGetDeviceProperties(0)",
                                    "hipGetDeviceProperties(1)", "hipGetDeviceProperties(2)"}));
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(VramRocmTest, TotalOfOneDeviceIsThatOfTheFirstReadable) {
  Machine machine = MachineWith(4);
  machine.faults = {{"hipGetDeviceProperties", 0, {}, hipErrorInvalidDevice},
                    {"hipGetDeviceProperties", 1, {}, hipErrorOutOfMemory}};
  Install(machine);
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(false, kStandardError), (3LL << 30) - 1);
  EXPECT_EQ(cerr_.writes(),
            (Calls{"hipGetDeviceProperties failed for device 0: hipErrorInvalidDevice\n",
                   "hipGetDeviceProperties failed for device 1: hipErrorOutOfMemory\n"}));
  EXPECT_EQ(RecordedCalls().back(), "hipGetDeviceProperties(2)");
}

TEST_F(VramRocmTest, TotalOfOneDeviceIsZeroIfNoneIsReadable) {
  Machine machine = MachineWith(2);
  machine.faults = {{"hipGetDeviceProperties", {}, {}, hipErrorUnknown}};
  Install(machine);
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(false, kStandardError), 0);
  EXPECT_EQ(cerr_.flushes(), 2);
}

TEST_F(VramRocmTest, FailedCountIsReportedWithTheErrorTextOfTheRuntime) {
  Install({});
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 0);
  EXPECT_EQ(cerr_.writes(), Calls{"hipGetDeviceCount failed: hipErrorNoDevice\n"});
  EXPECT_EQ(cerr_.flushes(), 1);
  EXPECT_EQ(RecordedCalls(), (Calls{"hipGetDeviceCount()", "hipGetErrorString(100)"}));
}

TEST_F(VramRocmTest, ZeroDevicesAreReportedOnceWithoutFlush) {
  Machine machine;
  machine.claimed_device_count = 0;
  Install(machine);
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 0);
  EXPECT_EQ(cerr_.writes(), Calls{"getMachinePhysicalVRAM_ROCm no HIP devices found\n"});
  EXPECT_EQ(cerr_.flushes(), 0);
}

TEST_F(VramRocmTest, NegativeCountIsZeroWithoutMessage) {
  Machine machine = MachineWith(1);
  machine.claimed_device_count = -3;
  Install(machine);
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 0);
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(false, kStandardError), 0);
  EXPECT_EQ(cerr_.text(), "");
}

// Each device of machines with 1 to 16 devices.
TEST_F(VramRocmTest, AnyUnreadableDeviceIsReportedAndAddsNothing) {
  for (int count = 1; count <= 16; ++count) {
    for (int bad = 0; bad < count; ++bad) {
      const CerrRecorder cerr;
      Machine machine = MachineWith(count);
      machine.faults = {{"hipGetDeviceProperties", bad, {}, hipErrorUnknown}};
      Install(machine);
      const long long all = (static_cast<long long>(count * (count + 1) / 2) << 30) - count;
      const long long missing = (static_cast<long long>(bad + 1) << 30) - 1;
      EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), all - missing);
      EXPECT_EQ(cerr.writes(), Calls{"hipGetDeviceProperties failed for device " +
                                     std::to_string(bad) + ": hipErrorUnknown\n"});
    }
  }
}

TEST_F(VramRocmTest, CallerSinkGetsEveryMessageInsteadOfStandardError) {
  SinkRecorder recorder;
  Install({});
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, recorder.sink()), 0);
  Machine machine = MachineWith(1);
  machine.faults = {{"hipGetDeviceProperties", 0, {}, hipErrorInvalidDevice}};
  Install(machine);
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, recorder.sink()), 0);
  machine.claimed_device_count = 0;
  Install(machine);
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, recorder.sink()), 0);
  EXPECT_EQ(recorder.text(),
            "hipGetDeviceCount failed: hipErrorNoDevice\n|"
            "hipGetDeviceProperties failed for device 0: hipErrorInvalidDevice\n|"
            "getMachinePhysicalVRAM_ROCm no HIP devices found\n");
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(VramRocmTest, UnreadableMiddleDeviceLeavesTheSumOfTheOthers) {
  Machine machine = MachineWith(3);
  machine.faults = {{"hipGetDeviceProperties", 1, {}, hipErrorInvalidDevice}};
  Install(machine);
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), (4LL << 30) - 2);
  EXPECT_EQ(cerr_.writes(),
            Calls{"hipGetDeviceProperties failed for device 1: hipErrorInvalidDevice\n"});
  EXPECT_EQ(cerr_.flushes(), 1);
}

TEST_F(VramRocmTest, AllDevicesUnreadableIsZero) {
  Machine machine = MachineWith(3);
  machine.faults = {{"hipGetDeviceProperties", {}, {}, hipErrorUnknown}};
  Install(machine);
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 0);
  EXPECT_EQ(cerr_.writes().size(), 3U);
}

TEST_F(VramRocmTest, SumBeyond64BitsWraps) {
  Machine machine = MachineWith(2);
  machine.devices[0].properties_memory = std::numeric_limits<std::uint64_t>::max();
  machine.devices[1].properties_memory = 8;
  Install(machine);
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 7);
}

TEST_F(VramRocmTest, FreeOfOneDeviceIsThatOfDeviceZero) {
  Install(MachineWith(3));
  static_cast<void>(hipSetDevice(2));
  EXPECT_EQ(getAvailableVRAM_ROCm(false), 1LL << 20);
  EXPECT_EQ(RecordedCalls(), (Calls{"hipSetDevice(2)", "hipGetDeviceCount()", "hipSetDevice(0)",
                                    "hipMemGetInfo()"}));
  EXPECT_EQ(CurrentDevice(), 0);
}

TEST_F(VramRocmTest, FreeOfTheOnlyDeviceIsReturnedEitherWay) {
  Install(MachineWith(1));
  EXPECT_EQ(getAvailableVRAM_ROCm(false), 1LL << 20);
  EXPECT_EQ(getAvailableVRAM_ROCm(true), 1LL << 20);
}

TEST_F(VramRocmTest, FreeOfAllDevicesIsTheSum) {
  Install(MachineWith(3));
  EXPECT_EQ(getAvailableVRAM_ROCm(true), 6LL << 20);
  EXPECT_EQ(RecordedCalls(),
            (Calls{"hipGetDeviceCount()", "hipSetDevice(0)", "hipMemGetInfo()", "hipSetDevice(1)",
                   "hipMemGetInfo()", "hipSetDevice(2)", "hipMemGetInfo()"}));
  EXPECT_EQ(CurrentDevice(), 2);
}

TEST_F(VramRocmTest, AnyDeviceWithFailedMemoryQueryAddsNothing) {
  for (int count = 1; count <= 16; ++count) {
    for (int bad = 0; bad < count; ++bad) {
      Machine machine = MachineWith(count);
      machine.faults = {{"hipMemGetInfo", bad, {}, hipErrorUnknown}};
      Install(machine);
      const long long all = static_cast<long long>(count * (count + 1) / 2) << 20;
      EXPECT_EQ(getAvailableVRAM_ROCm(true), all - (static_cast<long long>(bad + 1) << 20));
    }
  }
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(VramRocmTest, FailedQueryOfDeviceZeroIsZeroWithoutMessage) {
  Machine machine = MachineWith(2);
  machine.faults = {{"hipMemGetInfo", 0, {}, hipErrorUnknown}};
  Install(machine);
  EXPECT_EQ(getAvailableVRAM_ROCm(false), 0);
  EXPECT_EQ(cerr_.text(), "");
}

// The query then answers for device 0, which is still current.
TEST_F(VramRocmTest, DeviceThatCannotBeSelectedAddsNothing) {
  Machine machine = MachineWith(2);
  machine.faults = {{"hipSetDevice", 1, {}, hipErrorUnknown}};
  Install(machine);
  EXPECT_EQ(getAvailableVRAM_ROCm(true), 1LL << 20);
  EXPECT_EQ(RecordedCalls(), (Calls{"hipGetDeviceCount()", "hipSetDevice(0)", "hipMemGetInfo()",
                                    "hipSetDevice(1)", "hipMemGetInfo()"}));
}

TEST_F(VramRocmTest, FigureOfTheCurrentDeviceIsNotTakenForThatOfDeviceZero) {
  Machine machine = MachineWith(2);
  machine.faults = {{"hipSetDevice", 0, {}, hipErrorUnknown}};
  Install(machine);
  static_cast<void>(hipSetDevice(1));
  EXPECT_EQ(getAvailableVRAM_ROCm(false), 0);
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(VramRocmTest, FreeWithoutDevicesIsZeroWithoutMessage) {
  for (const int count : {0, -1}) {
    Machine machine = MachineWith(1);
    machine.claimed_device_count = count;
    Install(machine);
    EXPECT_EQ(getAvailableVRAM_ROCm(false), 0);
    EXPECT_EQ(getAvailableVRAM_ROCm(true), 0);
  }
  Install({});
  EXPECT_EQ(getAvailableVRAM_ROCm(false), 0);
  EXPECT_EQ(cerr_.text(), "");
}

}  // namespace
}  // namespace kestrel::tests

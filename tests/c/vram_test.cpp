#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "c/kestrelcore.h"
#include "simulator/control.h"
#include "tests/c/records.h"
#include "tests/fakes/cerr_recorder.h"

namespace kestrel::tests {
namespace {

using simulator::Device;
using simulator::Fault;
using simulator::Machine;

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;

Device DeviceOf(std::uint64_t total, std::uint64_t free) {
  Device device;
  device.name = "Card";
  device.total_memory = total;
  device.free_memory = free;
  device.properties_memory = total;
  return device;
}

class VramTest : public testing::Test {
 protected:
  VramTest() { InstallTwoDevices({}); }

  static void InstallTwoDevices(const std::vector<Fault>& faults) {
    Machine machine;
    machine.devices = {DeviceOf(8 * kGiB, 7 * kGiB), DeviceOf(16 * kGiB, 3 * kGiB)};
    machine.faults = faults;
    simulator::Install(machine);
  }

  static void InstallNoDevice() { simulator::Install({}); }

  kestrel_result result_ = UsedResult();
  std::uint64_t bytes_ = 77;
  std::uint64_t free_ = 77;
  std::uint64_t total_ = 77;
  CerrRecorder cerr_;
};

TEST_F(VramTest, GpuMemoryReportsAnyDevice) {
  EXPECT_EQ(kestrel_gpu_memory(1, &free_, &total_, &result_), KESTREL_OK);
  EXPECT_EQ(free_, 3 * kGiB);
  EXPECT_EQ(total_, 16 * kGiB);
  EXPECT_EQ(result_.status, KESTREL_OK);
  EXPECT_STREQ(result_.message, "");
  EXPECT_EQ(simulator::CurrentDevice(), 1);
}

TEST_F(VramTest, GpuMemoryReportsOneFigureIfTheOtherIsNotAskedFor) {
  EXPECT_EQ(kestrel_gpu_memory(0, &free_, nullptr, &result_), KESTREL_OK);
  EXPECT_EQ(free_, 7 * kGiB);
  EXPECT_EQ(kestrel_gpu_memory(0, nullptr, &total_, &result_), KESTREL_OK);
  EXPECT_EQ(total_, 8 * kGiB);
  EXPECT_EQ(kestrel_gpu_memory(0, nullptr, nullptr, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_STREQ(result_.message, "Both pointers to outputs are null");
}

TEST_F(VramTest, DeviceNumberOutOfRangeIsAnInvalidArgument) {
  for (const std::int32_t device : {-1, 2}) {
    EXPECT_EQ(kestrel_gpu_memory(device, &free_, &total_, &result_), KESTREL_INVALID_ARGUMENT);
    EXPECT_STREQ(result_.message, "The device number is not below the number of devices");
    EXPECT_EQ(free_, 0U);
    EXPECT_EQ(total_, 0U);
  }
}

TEST_F(VramTest, WithoutADeviceEveryVramFigureFails) {
  InstallNoDevice();
  EXPECT_EQ(kestrel_gpu_memory(0, &free_, &total_, &result_), KESTREL_NO_DEVICES);
  EXPECT_EQ(free_, 0U);
  EXPECT_EQ(kestrel_available_vram(&bytes_, &result_), KESTREL_NO_DEVICES);
  EXPECT_EQ(bytes_, 0U);
  EXPECT_STREQ(result_.message, "No HIP devices found");
  EXPECT_EQ(kestrel_machine_physical_vram(&bytes_, &result_), KESTREL_NO_DEVICES);
  EXPECT_EQ(bytes_, 0U);
  EXPECT_STREQ(result_.message, "hipGetDeviceCount failed: hipErrorNoDevice");
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(VramTest, DeviceThatCannotBeMadeCurrentFails) {
  InstallTwoDevices({{"hipSetDevice", 1, {}, hipErrorInvalidDevice}});
  EXPECT_EQ(kestrel_gpu_memory(1, &free_, &total_, &result_), KESTREL_DEVICE_QUERY_FAILED);
  EXPECT_STREQ(result_.message, "hipSetDevice failed for device 1: hipErrorInvalidDevice");
  EXPECT_EQ(free_, 0U);
}

TEST_F(VramTest, DeviceWhoseMemoryCannotBeReadFails) {
  InstallTwoDevices({{"hipMemGetInfo", 0, {}, hipErrorUnknown}});
  EXPECT_EQ(kestrel_available_vram(&bytes_, &result_), KESTREL_DEVICE_QUERY_FAILED);
  EXPECT_STREQ(result_.message, "hipMemGetInfo failed for device 0: hipErrorUnknown");
  EXPECT_EQ(bytes_, 0U);
  EXPECT_EQ(kestrel_available_vram(&bytes_, nullptr), KESTREL_DEVICE_QUERY_FAILED);
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(VramTest, AvailableVramIsThatOfDeviceZero) {
  EXPECT_EQ(kestrel_available_vram(&bytes_, &result_), KESTREL_OK);
  EXPECT_EQ(bytes_, 7 * kGiB);
  EXPECT_EQ(simulator::CurrentDevice(), 0);
}

TEST_F(VramTest, PhysicalVramIsTheSumOfAllDevices) {
  EXPECT_EQ(kestrel_machine_physical_vram(&bytes_, &result_), KESTREL_OK);
  EXPECT_EQ(bytes_, 24 * kGiB);
  EXPECT_EQ(result_.status, KESTREL_OK);
  EXPECT_STREQ(result_.message, "");
}

TEST_F(VramTest, PhysicalVramOfDevicesWithoutMemoryIsASuccess) {
  Machine machine;
  machine.devices = {DeviceOf(0, 0)};
  simulator::Install(machine);
  EXPECT_EQ(kestrel_machine_physical_vram(&bytes_, &result_), KESTREL_OK);
  EXPECT_EQ(bytes_, 0U);
  EXPECT_EQ(result_.status, KESTREL_OK);
  EXPECT_STREQ(result_.message, "");
}

TEST_F(VramTest, DeviceThatFailsIsReportedNextToTheSumOfTheOthers) {
  InstallTwoDevices({{"hipGetDeviceProperties", 0, {}, hipErrorInvalidValue}});
  EXPECT_EQ(kestrel_machine_physical_vram(&bytes_, &result_), KESTREL_DEVICE_QUERY_FAILED);
  EXPECT_EQ(bytes_, 16 * kGiB);
  EXPECT_STREQ(result_.message, "hipGetDeviceProperties failed for device 0: hipErrorInvalidValue");
}

TEST_F(VramTest, EachDeviceThatFailsHasALine) {
  InstallTwoDevices({{"hipGetDeviceProperties", {}, {}, hipErrorInvalidValue}});
  EXPECT_EQ(kestrel_machine_physical_vram(&bytes_, &result_), KESTREL_DEVICE_QUERY_FAILED);
  EXPECT_EQ(bytes_, 0U);
  EXPECT_STREQ(result_.message,
               "hipGetDeviceProperties failed for device 0: hipErrorInvalidValue\n"
               "hipGetDeviceProperties failed for device 1: hipErrorInvalidValue");
}

TEST_F(VramTest, WithoutAResultTheDiagnosticIsThatOfTheCppCall) {
  InstallNoDevice();
  EXPECT_EQ(kestrel_machine_physical_vram(&bytes_, nullptr), KESTREL_NO_DEVICES);
  EXPECT_EQ(cerr_.text(), "hipGetDeviceCount failed: hipErrorNoDevice\n");
}

// The sum has been made when the runtime fails.
TEST_F(VramTest, RuntimeThatFailsAfterTheSumIsMadeDoesNotSpoilIt) {
  Machine machine;
  machine.devices = {DeviceOf(1, 1)};
  machine.faults = {{"hipGetDeviceCount", {}, 2, hipErrorUnknown}};
  simulator::Install(machine);
  EXPECT_EQ(kestrel_machine_physical_vram(&bytes_, &result_), KESTREL_OK);
  EXPECT_EQ(bytes_, 1U);
}

TEST_F(VramTest, NullOutputIsAnInvalidArgument) {
  EXPECT_EQ(kestrel_machine_physical_vram(nullptr, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(kestrel_available_vram(nullptr, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_TRUE(simulator::RecordedCalls().empty());
}

}  // namespace
}  // namespace kestrel::tests

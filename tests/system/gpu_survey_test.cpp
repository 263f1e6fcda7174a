#include "system/gpu_survey.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>

#include "simulator/control.h"

namespace kestrel::tests {
namespace {

using simulator::Device;
using simulator::Machine;
using system::GpuInfo;
using system::GpuIntegrationType;
using system::GpuSoftwarePlatform;
using system::ResultCode;
using system::SurveyGpus;

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;
constexpr const char* kPrefix = "Error trying to query ROCm gpus: ";

Machine MachineWith(int device_count) {
  Machine machine;
  for (int i = 0; i < device_count; ++i) {
    Device device;
    device.name = "Card " + std::to_string(i);
    device.arch = "gfx" + std::to_string(1030 + i);
    device.total_memory = kGiB * static_cast<std::uint64_t>(i + 1);
    device.free_memory = device.total_memory / 2;
    device.properties_memory = device.total_memory;
    machine.devices.push_back(device);
  }
  return machine;
}

// The calls of a survey that describes this many devices.
std::vector<std::string> CallsFor(int device_count) {
  std::vector<std::string> calls = {"hipGetDeviceCount()"};
  for (int i = 0; i < device_count; ++i) {
    calls.push_back("hipGetDeviceProperties(" + std::to_string(i) + ")");
    calls.push_back("hipSetDevice(" + std::to_string(i) + ")");
    calls.emplace_back("hipMemGetInfo()");
  }
  return calls;
}

void ExpectFailure(ResultCode code, const std::string& inner_message) {
  const auto [result, gpus] = SurveyGpus();
  EXPECT_EQ(result.code, code);
  EXPECT_EQ(result.message, kPrefix + inner_message);
  EXPECT_TRUE(gpus.empty());
}

GpuInfo SurveyOnly(const Device& device) {
  Machine machine;
  machine.devices = {device};
  simulator::Install(machine);
  const auto [result, gpus] = SurveyGpus();
  EXPECT_EQ(result.code, ResultCode::Success);
  EXPECT_EQ(gpus.size(), 1U);
  return gpus.empty() ? GpuInfo{} : gpus.front();
}

TEST(GpuSurveyTest, FailedDeviceCountReturnsNoDevices) {
  Machine machine = MachineWith(2);
  machine.faults = {{"hipGetDeviceCount", {}, {}, hipErrorNoDevice}};
  simulator::Install(machine);
  ExpectFailure(ResultCode::NoDevices, "No hip devices found!");
  EXPECT_EQ(simulator::RecordedCalls(), CallsFor(0));
}

TEST(GpuSurveyTest, AnyStatusOfFailedDeviceCountReturnsTheSameMessage) {
  for (const hipError_t status : {hipErrorNotInitialized, hipErrorOutOfMemory, hipErrorUnknown}) {
    Machine machine;
    machine.faults = {{"hipGetDeviceCount", {}, {}, status}};
    simulator::Install(machine);
    ExpectFailure(ResultCode::NoDevices, "No hip devices found!");
  }
}

TEST(GpuSurveyTest, ZeroDevicesReturnSuccessAndEmptyList) {
  Machine machine;
  machine.claimed_device_count = 0;
  simulator::Install(machine);
  const auto [result, gpus] = SurveyGpus();
  EXPECT_EQ(result.code, ResultCode::Success);
  EXPECT_EQ(result.message, "");
  EXPECT_TRUE(gpus.empty());
  EXPECT_EQ(simulator::RecordedCalls(), CallsFor(0));
}

TEST(GpuSurveyTest, NegativeCountReturnsSuccessAndEmptyList) {
  Machine machine = MachineWith(1);
  machine.claimed_device_count = -1;
  simulator::Install(machine);
  const auto [result, gpus] = SurveyGpus();
  EXPECT_EQ(result.code, ResultCode::Success);
  EXPECT_TRUE(gpus.empty());
  EXPECT_EQ(simulator::RecordedCalls(), CallsFor(0));
}

TEST(GpuSurveyTest, ThreeDevicesAreListedInOrder) {
  simulator::Install(MachineWith(3));
  const auto [result, gpus] = SurveyGpus();
  EXPECT_EQ(result.code, ResultCode::Success);
  EXPECT_EQ(result.message, "");
  ASSERT_EQ(gpus.size(), 3U);
  for (int i = 0; i < 3; ++i) {
    const GpuInfo& gpu = gpus[static_cast<std::size_t>(i)];
    EXPECT_EQ(gpu.name, "Card " + std::to_string(i));
    EXPECT_EQ(gpu.deviceId, i);
    EXPECT_EQ(gpu.totalMemory, kGiB * static_cast<std::uint64_t>(i + 1));
    EXPECT_EQ(gpu.dedicatedMemory, 0U);
    EXPECT_EQ(gpu.integrationType, GpuIntegrationType::Discrete);
    EXPECT_EQ(gpu.detectionPlatform, GpuSoftwarePlatform::ROCm);
    EXPECT_EQ(gpu.detectionPlatformVersion, "");
    EXPECT_EQ(gpu.otherInfo, (std::unordered_map<std::string, std::string>{
                                 {"gcnArchName", "gfx" + std::to_string(1030 + i)}}));
  }
  EXPECT_EQ(simulator::RecordedCalls(), CallsFor(3));
  EXPECT_EQ(simulator::CurrentDevice(), 2);
}

TEST(GpuSurveyTest, AnyNonzeroValueIsIntegrated) {
  Device device;
  EXPECT_EQ(SurveyOnly(device).integrationType, GpuIntegrationType::Discrete);
  for (const int integrated : {1, 2, -1, std::numeric_limits<int>::min()}) {
    device.integrated = integrated;
    EXPECT_EQ(SurveyOnly(device).integrationType, GpuIntegrationType::Integrated) << integrated;
  }
}

TEST(GpuSurveyTest, TotalMemoryComesFromTheMemoryQuery) {
  Device device;
  device.total_memory = 8 * kGiB;
  device.properties_memory = 7 * kGiB;
  device.free_memory = 9 * kGiB;  // a runtime may claim more free memory than there is
  EXPECT_EQ(SurveyOnly(device).totalMemory, 8 * kGiB);
}

TEST(GpuSurveyTest, LargestMemorySizeIsKept) {
  Device device;
  device.total_memory = std::numeric_limits<std::uint64_t>::max();
  EXPECT_EQ(SurveyOnly(device).totalMemory, std::numeric_limits<std::uint64_t>::max());
}

TEST(GpuSurveyTest, NameWithoutNulEndsWithItsArray) {
  Device device;
  device.name = std::string(300, 'n');
  device.arch = std::string(300, 'a');
  const GpuInfo gpu = SurveyOnly(device);
  EXPECT_EQ(gpu.name, std::string(256, 'n'));
  EXPECT_EQ(gpu.otherInfo.at("gcnArchName"), std::string(256, 'a'));
}

TEST(GpuSurveyTest, NameEndsAtTheFirstNul) {
  Device device;
  device.name = std::string("seen\0unseen", 11);
  device.arch = std::string("gfx90a\0tail", 11);
  const GpuInfo gpu = SurveyOnly(device);
  EXPECT_EQ(gpu.name, "seen");
  EXPECT_EQ(gpu.otherInfo.at("gcnArchName"), "gfx90a");
}

TEST(GpuSurveyTest, FailureAfterGoodDeviceReturnsEmptyList) {
  Machine machine = MachineWith(3);
  machine.faults = {{"hipMemGetInfo", 1, {}, hipErrorUnknown}};
  simulator::Install(machine);
  ExpectFailure(ResultCode::DeviceQueryFailed,
                "Failed to get memory info for hip device at device id'1'");
  EXPECT_EQ(simulator::CurrentDevice(), 1);
}

// Memory reserved for this count would be terabytes.
TEST(GpuSurveyTest, AbsurdCountFailsAtTheFirstMissingDevice) {
  Machine machine = MachineWith(2);
  machine.claimed_device_count = std::numeric_limits<int>::max();
  simulator::Install(machine);
  ExpectFailure(ResultCode::DeviceQueryFailed, "Invalid hip device at device id'2'");
}

TEST(GpuSurveyTest, ChangedMachineShowsAtTheNextCall) {
  simulator::Install(MachineWith(1));
  EXPECT_EQ(SurveyGpus().second.size(), 1U);
  simulator::Install(MachineWith(2));
  EXPECT_EQ(SurveyGpus().second.size(), 2U);
}

// Every point at which a survey of 1 to 16 devices can fail.
struct FailurePoint {
  const char* operation;
  const char* message;
  int calls_for_the_device;  // up to and including the failing one
  bool made_current;
};

// GoogleTest would print the bytes of its pointers, which differ from run to run.
void PrintTo(const FailurePoint& point, std::ostream* out) { *out << point.operation; }

class GpuSurveyFailureTest : public testing::TestWithParam<FailurePoint> {};

TEST_P(GpuSurveyFailureTest, FailureAtAnyOfUpTo16DevicesEndsTheSurveyThere) {
  const FailurePoint& point = GetParam();
  for (int count = 1; count <= 16; ++count) {
    for (int bad = 0; bad < count; ++bad) {
      SCOPED_TRACE(std::to_string(bad) + " of " + std::to_string(count));
      Machine machine = MachineWith(count);
      machine.faults = {{point.operation, bad, {}, hipErrorUnknown}};
      simulator::Install(machine);
      ExpectFailure(ResultCode::DeviceQueryFailed, point.message + std::to_string(bad) + "'");
      std::vector<std::string> calls = CallsFor(bad + 1);
      calls.resize(calls.size() - 3U + static_cast<std::size_t>(point.calls_for_the_device));
      EXPECT_EQ(simulator::RecordedCalls(), calls);
      EXPECT_EQ(simulator::CurrentDevice(), point.made_current ? bad : std::max(bad - 1, 0));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    EveryPoint, GpuSurveyFailureTest,
    testing::Values(
        FailurePoint{"hipGetDeviceProperties", "Invalid hip device at device id'", 1, false},
        FailurePoint{"hipSetDevice", "Failed to set hip device at device id'", 2, false},
        FailurePoint{"hipMemGetInfo", "Failed to get memory info for hip device at device id'", 3,
                     true}),
    [](const auto& failure) { return std::string(failure.param.operation); });

}  // namespace
}  // namespace kestrel::tests

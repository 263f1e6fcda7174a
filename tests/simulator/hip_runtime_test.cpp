#include <gtest/gtest.h>
#include <hip/hip_runtime_api.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "simulator/control.h"
#include "simulator/runtime.h"

namespace kestrel::tests {

namespace {

using simulator::CurrentDevice;
using simulator::Device;
using simulator::Fault;
using simulator::Install;
using simulator::kHip5;
using simulator::kHip6;
using simulator::kHip7;
using simulator::Machine;
using simulator::RecordedCalls;
using simulator::Recording;
using testing::Test;

constexpr std::size_t kGiB = std::size_t{1} << 30;

// Devices of 8, 16, 24, … GiB, each with a GiB in use.
Machine MachineWith(int device_count) {
  Machine machine;
  for (int i = 0; i < device_count; ++i) {
    const std::uint64_t memory = (static_cast<std::uint64_t>(i) + 1) * 8 * kGiB;
    machine.devices.push_back({"card " + std::to_string(i), "gfx110" + std::to_string(i), 0, memory,
                               memory - kGiB, memory});
  }
  return machine;
}

Machine WithFault(Machine machine, Fault fault) {
  machine.faults.push_back(std::move(fault));
  return machine;
}

std::size_t FreeMemory() {
  std::size_t free = 0;
  std::size_t total = 0;
  EXPECT_EQ(hipMemGetInfo(&free, &total), hipSuccess);
  return free;
}

class HipRuntimeTest : public Test {
 protected:
  void TearDown() override { Install({}); }
};

TEST_F(HipRuntimeTest, OneMutexGuardsTheRuntime) {
  EXPECT_EQ(&simulator::RuntimeMutex(), &simulator::RuntimeMutex());
}

TEST_F(HipRuntimeTest, PropertiesAreThoseOfTheMachine) {
  Install({{{"a card", "gfx1100", 0, 10, 5, 7}, {"an APU", "gfx1103", 1, 20, 30, 40}}, {}, {}});
  int count = 0;
  EXPECT_EQ(hipGetDeviceCount(&count), hipSuccess);
  EXPECT_EQ(count, 2);
  hipDeviceProp_t properties{};
  properties.warpSize = 3;
  EXPECT_EQ(hipGetDeviceProperties(&properties, 1), hipSuccess);
  EXPECT_STREQ(properties.name, "an APU");
  EXPECT_STREQ(properties.gcnArchName, "gfx1103");
  EXPECT_EQ(properties.integrated, 1);
  EXPECT_EQ(properties.totalGlobalMem, 40U);
  EXPECT_EQ(properties.warpSize, 0) << "a field that no machine describes";
  const std::string name(properties.name, sizeof(properties.name));
  EXPECT_EQ(name.find_last_not_of('\0'), name.find("an APU") + 5) << "nothing after the name";
}

TEST_F(HipRuntimeTest, MemoryIsThatOfTheCurrentDevice) {
  Install({{{"a", "", 0, 10, 5, 7}, {"b", "", 0, 20, 30, 40}}, {}, {}});
  std::size_t free = 0;
  std::size_t total = 0;
  EXPECT_EQ(hipMemGetInfo(&free, &total), hipSuccess);
  EXPECT_EQ(free, 5U);
  EXPECT_EQ(total, 10U);
  EXPECT_EQ(hipSetDevice(1), hipSuccess);
  EXPECT_EQ(hipMemGetInfo(&free, &total), hipSuccess);
  EXPECT_EQ(free, 30U) << "more than the total, as described";
  EXPECT_EQ(total, 20U);
}

TEST_F(HipRuntimeTest, UnknownDeviceIsInvalid) {
  Install(MachineWith(2));
  hipDeviceProp_t properties{};
  std::array<char, 8> name{};
  for (const int device : {-1, 2, std::numeric_limits<int>::max()}) {
    EXPECT_EQ(hipSetDevice(device), hipErrorInvalidDevice);
    EXPECT_EQ(hipGetDeviceProperties(&properties, device), hipErrorInvalidDevice);
    EXPECT_EQ(hipDeviceGetName(name.data(), 8, device), hipErrorInvalidDevice);
  }
  EXPECT_EQ(CurrentDevice(), 0);
}

TEST_F(HipRuntimeTest, NullOutputIsInvalid) {
  Install(MachineWith(1));
  std::size_t bytes = 0;
  EXPECT_EQ(hipGetDeviceCount(nullptr), hipErrorInvalidValue);
  EXPECT_EQ(hipGetDevice(nullptr), hipErrorInvalidValue);
  EXPECT_EQ(hipGetDeviceProperties(nullptr, 0), hipErrorInvalidValue);
  EXPECT_EQ(hipDeviceGetName(nullptr, 8, 0), hipErrorInvalidValue);
  EXPECT_EQ(hipMemGetInfo(nullptr, &bytes), hipErrorInvalidValue);
  EXPECT_EQ(hipMemGetInfo(&bytes, nullptr), hipErrorInvalidValue);
  EXPECT_EQ(hipMalloc(static_cast<void**>(nullptr), 1), hipErrorInvalidValue);
  EXPECT_EQ(hipRuntimeGetVersion(nullptr), hipErrorInvalidValue);
  EXPECT_EQ(hipDriverGetVersion(nullptr), hipErrorInvalidValue);
}

TEST_F(HipRuntimeTest, FlagsOfTheStartMustBeZero) {
  Install(MachineWith(1));
  EXPECT_EQ(hipInit(0), hipSuccess);
  EXPECT_EQ(hipInit(1), hipErrorInvalidValue);
}

TEST_F(HipRuntimeTest, AllocationsAreWholePagesApart) {
  Install(MachineWith(1));
  std::uintptr_t last = 0;
  std::vector<std::uintptr_t> distances;
  for (const std::size_t size : {1, 4095, 4096, 4097, 1}) {
    void* memory = nullptr;
    ASSERT_EQ(hipMalloc(&memory, size), hipSuccess);
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    distances.push_back(address - last);
    last = address;
  }
  distances.erase(distances.begin());
  EXPECT_EQ(distances, (std::vector<std::uintptr_t>{4096, 4096, 4096, 8192}));
}

TEST_F(HipRuntimeTest, VersionIsThatOfTheRelease) {
  for (const int release : {kHip5, kHip6, kHip7}) {
    Install({}, Recording::kOn, release);
    int version = 0;
    EXPECT_EQ(hipRuntimeGetVersion(&version), hipSuccess);
    EXPECT_EQ(version, release);
    version = 0;
    EXPECT_EQ(hipDriverGetVersion(&version), hipSuccess);
    EXPECT_EQ(version, release);
  }
}

TEST_F(HipRuntimeTest, TextOfStatusIsItsNameUpToHip52) {
  Install({}, Recording::kOn, kHip5);
  EXPECT_STREQ(hipGetErrorString(hipErrorNoDevice), "hipErrorNoDevice");
  EXPECT_STREQ(hipGetErrorString(hipSuccess), "hipSuccess");
  EXPECT_STREQ(hipGetErrorString(static_cast<hipError_t>(800)), "hipErrorUnknown");
}

TEST_F(HipRuntimeTest, TextOfStatusIsASentenceSinceHip53) {
  for (const int release : {50'300'000, kHip6, kHip7}) {
    Install({}, Recording::kOn, release);
    EXPECT_STREQ(hipGetErrorString(hipErrorNoDevice), "no ROCm-capable device is detected");
    EXPECT_STREQ(hipGetErrorString(hipSuccess), "no error");
    EXPECT_STREQ(hipGetErrorString(static_cast<hipError_t>(800)), "unknown error");
  }
}

TEST_F(HipRuntimeTest, NameOfStatusIsTheSameInEveryRelease) {
  for (const int release : {kHip5, kHip6, kHip7}) {
    Install({}, Recording::kOn, release);
    EXPECT_STREQ(hipGetErrorName(hipErrorOutOfMemory), "hipErrorOutOfMemory");
    EXPECT_STREQ(hipGetErrorName(static_cast<hipError_t>(800)), "hipErrorUnknown");
  }
}

TEST_F(HipRuntimeTest, LongNameIsCutToTheCallersBuffer) {
  Install({{{"Radeon", "", 0, 1, 1, 1}}, {}, {}});
  std::array<char, 8> name{};
  EXPECT_EQ(hipDeviceGetName(name.data(), 8, 0), hipSuccess);
  EXPECT_STREQ(name.data(), "Radeon");
  name.fill('x');
  EXPECT_EQ(hipDeviceGetName(name.data(), 4, 0), hipSuccess);
  EXPECT_STREQ(name.data(), "Rad");
  EXPECT_EQ(name[4], 'x');
  EXPECT_EQ(hipDeviceGetName(name.data(), 1, 0), hipSuccess);
  EXPECT_STREQ(name.data(), "");
  EXPECT_EQ(hipDeviceGetName(name.data(), 0, 0), hipErrorInvalidValue);
}

TEST_F(HipRuntimeTest, NineDevicesKeepTheirOwnMemory) {
  Install(MachineWith(9));
  int count = 0;
  EXPECT_EQ(hipGetDeviceCount(&count), hipSuccess);
  ASSERT_EQ(count, 9);
  for (int device = 0; device < count; ++device) {
    EXPECT_EQ(hipSetDevice(device), hipSuccess);
    EXPECT_EQ(FreeMemory(), (static_cast<std::size_t>(device) + 1) * 8 * kGiB - kGiB);
  }
  EXPECT_EQ(hipSetDevice(9), hipErrorInvalidDevice);
}

void ExpectEveryCallFailsWith(hipError_t failure) {
  int number = 7;
  EXPECT_EQ(hipGetDeviceCount(&number), hipErrorNoDevice);
  EXPECT_EQ(number, 0);
  number = 7;
  EXPECT_EQ(hipGetDevice(&number), failure);
  EXPECT_EQ(hipInit(0), failure);
  EXPECT_EQ(hipSetDevice(0), failure);
  hipDeviceProp_t properties{};
  EXPECT_EQ(hipGetDeviceProperties(&properties, 0), failure);
  std::size_t free = 7;
  std::size_t total = 7;
  EXPECT_EQ(hipMemGetInfo(&free, &total), failure);
  EXPECT_EQ(hipFree(nullptr), failure);
  EXPECT_EQ(hipGetLastError(), failure);
  EXPECT_EQ(hipGetLastError(), failure) << "this call fails without a device, too";
  EXPECT_EQ(number, 7);
  EXPECT_EQ(free, 7U);
  EXPECT_EQ(total, 7U);
}

TEST_F(HipRuntimeTest, WithoutDevicesOtherCallsReportAnInvalidDeviceUpToHip52) {
  Install({}, Recording::kOn, kHip5);
  ExpectEveryCallFailsWith(hipErrorInvalidDevice);
}

TEST_F(HipRuntimeTest, WithoutDevicesEveryCallReportsNoDeviceSinceHip53) {
  for (const int release : {50'300'000, kHip6, kHip7}) {
    Install({}, Recording::kOn, release);
    ExpectEveryCallFailsWith(hipErrorNoDevice);
  }
}

TEST_F(HipRuntimeTest, ClaimedCountIsReported) {
  Machine machine = MachineWith(1);
  machine.claimed_device_count = 3;
  Install(machine);
  int count = 0;
  EXPECT_EQ(hipGetDeviceCount(&count), hipSuccess);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(hipSetDevice(0), hipSuccess);
  EXPECT_EQ(hipSetDevice(1), hipErrorInvalidDevice);
}

TEST_F(HipRuntimeTest, ClaimedCountOfZeroIsReportedWithSuccess) {
  Install({{}, 0, {}});
  int count = 7;
  EXPECT_EQ(hipGetDeviceCount(&count), hipSuccess);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(hipInit(0), hipSuccess);
  void* memory = nullptr;
  EXPECT_EQ(hipMalloc(&memory, 1), hipErrorInvalidDevice);
  std::size_t free = 7;
  std::size_t total = 7;
  EXPECT_EQ(hipMemGetInfo(&free, &total), hipErrorInvalidDevice);
}

TEST_F(HipRuntimeTest, CallsAreRecordedInOrder) {
  Install(MachineWith(2));
  int number = 0;
  hipDeviceProp_t properties{};
  std::size_t free = 0;
  std::size_t total = 0;
  void* memory = nullptr;
  static_cast<void>(hipInit(0));
  static_cast<void>(hipGetDeviceCount(&number));
  static_cast<void>(hipGetDeviceProperties(&properties, 1));
  static_cast<void>(hipSetDevice(-1));
  static_cast<void>(hipMemGetInfo(&free, &total));
  static_cast<void>(hipGetErrorString(hipErrorNoDevice));
  static_cast<void>(hipMalloc(&memory, 16));
  static_cast<void>(hipFree(memory));
  static_cast<void>(hipGetErrorName(hipErrorNotReady));
  static_cast<void>(hipGetLastError());
  const std::vector<std::string> expected = {
      "hipInit(0)",       "hipGetDeviceCount()", "hipGetDeviceProperties(1)",
      "hipSetDevice(-1)", "hipMemGetInfo()",     "hipGetErrorString(100)",
      "hipMalloc(16)",    "hipFree()",           "hipGetErrorName(600)",
      "hipGetLastError()"};
  EXPECT_EQ(RecordedCalls(), expected);
  Install({});
  EXPECT_TRUE(RecordedCalls().empty());
}

TEST_F(HipRuntimeTest, RecordingOffKeepsNoCalls) {
  Install(MachineWith(1), Recording::kOff);
  EXPECT_EQ(hipSetDevice(0), hipSuccess);
  EXPECT_TRUE(RecordedCalls().empty());
}

TEST_F(HipRuntimeTest, FaultFailsItsOperationOnItsDevice) {
  Install(WithFault(MachineWith(3), {"hipGetDeviceProperties", 1, {}, hipErrorNotReady}));
  hipDeviceProp_t properties{};
  EXPECT_EQ(hipGetDeviceProperties(&properties, 0), hipSuccess);
  EXPECT_EQ(hipGetDeviceProperties(&properties, 1), hipErrorNotReady);
  EXPECT_EQ(hipGetDeviceProperties(&properties, 1), hipErrorNotReady);
  EXPECT_STREQ(properties.name, "card 0") << "a call that fails writes nothing";
  EXPECT_EQ(hipGetDeviceProperties(&properties, 2), hipSuccess);
  EXPECT_EQ(hipSetDevice(1), hipSuccess) << "another operation";
}

TEST_F(HipRuntimeTest, FaultOfOperationWithoutDeviceUsesTheCurrentOne) {
  Install(WithFault(MachineWith(2), {"hipMemGetInfo", 1, {}, hipErrorUnknown}));
  std::size_t free = 7;
  std::size_t total = 7;
  ASSERT_EQ(hipSetDevice(1), hipSuccess);
  EXPECT_EQ(hipMemGetInfo(&free, &total), hipErrorUnknown);
  EXPECT_EQ(free, 7U);
  EXPECT_EQ(total, 7U);
  ASSERT_EQ(hipSetDevice(0), hipSuccess);
  EXPECT_EQ(hipMemGetInfo(&free, &total), hipSuccess);
}

TEST_F(HipRuntimeTest, FaultFailsTheCallOfItsNumber) {
  Install(WithFault(MachineWith(2), {"hipMemGetInfo", 1, 2, hipErrorUnknown}));
  std::size_t free = 0;
  std::size_t total = 0;
  EXPECT_EQ(hipMemGetInfo(&free, &total), hipSuccess) << "on another device, so not counted";
  ASSERT_EQ(hipSetDevice(1), hipSuccess);
  EXPECT_EQ(hipMemGetInfo(&free, &total), hipSuccess);
  EXPECT_EQ(hipMemGetInfo(&free, &total), hipErrorUnknown);
  EXPECT_EQ(hipMemGetInfo(&free, &total), hipSuccess);
}

TEST_F(HipRuntimeTest, EveryFaultCountsItsMatchingCalls) {
  Machine machine = MachineWith(1);
  machine.faults = {{"hipGetDeviceCount", {}, 1, hipErrorNotReady},
                    {"hipGetDeviceCount", {}, 2, hipErrorUnknown}};
  Install(machine);
  int count = 7;
  EXPECT_EQ(hipGetDeviceCount(&count), hipErrorNotReady);
  EXPECT_EQ(count, 7);
  EXPECT_EQ(hipGetDeviceCount(&count), hipErrorUnknown);
  EXPECT_EQ(hipGetDeviceCount(&count), hipSuccess);
}

TEST_F(HipRuntimeTest, FirstFaultThatACallMeetsDecidesItsStatus) {
  Machine machine = MachineWith(1);
  machine.faults = {{"hipInit", {}, {}, hipErrorNotReady}, {"hipInit", {}, {}, hipErrorUnknown}};
  Install(machine);
  EXPECT_EQ(hipInit(0), hipErrorNotReady);
}

TEST_F(HipRuntimeTest, FaultPrecedesTheFailureWithoutDevices) {
  Install({{}, {}, {{"hipInit", {}, {}, hipErrorNotReady}}});
  EXPECT_EQ(hipInit(0), hipErrorNotReady);
}

TEST_F(HipRuntimeTest, FailingSetDeviceKeepsTheCurrentDevice) {
  Install(WithFault(MachineWith(3), {"hipSetDevice", 2, {}, hipErrorUnknown}));
  EXPECT_EQ(hipSetDevice(1), hipSuccess);
  EXPECT_EQ(hipSetDevice(2), hipErrorUnknown);
  EXPECT_EQ(CurrentDevice(), 1);
}

TEST_F(HipRuntimeTest, LastErrorIsKeptForEachThread) {
  Install(MachineWith(1));
  EXPECT_EQ(hipPeekAtLastError(), hipSuccess);
  EXPECT_EQ(hipSetDevice(5), hipErrorInvalidDevice);
  std::thread([] { EXPECT_EQ(hipPeekAtLastError(), hipSuccess); }).join();
  EXPECT_EQ(hipPeekAtLastError(), hipErrorInvalidDevice);
  EXPECT_EQ(hipGetLastError(), hipErrorInvalidDevice);
  EXPECT_EQ(hipGetLastError(), hipSuccess);
}

TEST_F(HipRuntimeTest, SuccessClearsTheLastErrorUpToHip6) {
  for (const int release : {kHip5, kHip6}) {
    Install(MachineWith(1), Recording::kOn, release);
    EXPECT_EQ(hipSetDevice(5), hipErrorInvalidDevice);
    EXPECT_EQ(hipSetDevice(0), hipSuccess);
    EXPECT_EQ(hipGetLastError(), hipSuccess);
  }
}

TEST_F(HipRuntimeTest, SuccessAndNotReadyKeepTheLastErrorSinceHip7) {
  Install(WithFault(MachineWith(1), {"hipGetDevice", {}, {}, hipErrorNotReady}), Recording::kOn,
          kHip7);
  int device = 0;
  EXPECT_EQ(hipSetDevice(5), hipErrorInvalidDevice);
  EXPECT_EQ(hipSetDevice(0), hipSuccess);
  EXPECT_EQ(hipGetDevice(&device), hipErrorNotReady);
  EXPECT_EQ(hipGetLastError(), hipErrorInvalidDevice);
  EXPECT_EQ(hipGetLastError(), hipSuccess);
}

TEST_F(HipRuntimeTest, MallocAndFreeChangeTheFreeFigure) {
  Install(MachineWith(2));
  const std::size_t free_before = FreeMemory();
  void* first = nullptr;
  void* second = nullptr;
  ASSERT_EQ(hipMalloc(&first, kGiB), hipSuccess);
  ASSERT_EQ(hipMalloc(&second, 1), hipSuccess);
  EXPECT_EQ(FreeMemory(), free_before - kGiB - 1);
  ASSERT_EQ(hipSetDevice(1), hipSuccess);
  EXPECT_EQ(FreeMemory(), 15 * kGiB) << "each device has its own";
  EXPECT_EQ(hipFree(first), hipSuccess) << "allocated on device 0";
  ASSERT_EQ(hipSetDevice(0), hipSuccess);
  EXPECT_EQ(FreeMemory(), free_before - 1);
  EXPECT_EQ(hipFree(second), hipSuccess);
  EXPECT_EQ(FreeMemory(), free_before);
}

TEST_F(HipRuntimeTest, AllocationsDoNotOverlap) {
  Install(MachineWith(1));
  void* first = nullptr;
  void* second = nullptr;
  ASSERT_EQ(hipMalloc(&first, 10000), hipSuccess);
  ASSERT_EQ(hipMalloc(&second, 1), hipSuccess);
  EXPECT_GE(reinterpret_cast<std::uintptr_t>(second),
            reinterpret_cast<std::uintptr_t>(first) + 10000);
}

TEST_F(HipRuntimeTest, MallocBeyondTheLastAddressFails) {
  const std::size_t most = std::numeric_limits<std::size_t>::max();
  Install({{{"a card", "gfx1100", 0, most, most, most}}, {}, {}});
  void* first = nullptr;
  void* second = nullptr;
  ASSERT_EQ(hipMalloc(&first, 1), hipSuccess);
  const std::size_t next = reinterpret_cast<std::uintptr_t>(first) + 4096;
  const std::size_t space = most - next - 4096;  // the last page stays free
  EXPECT_EQ(hipMalloc(&second, space + 1), hipErrorOutOfMemory);
  EXPECT_EQ(hipMalloc(&second, space), hipSuccess);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(second), next);
}

TEST_F(HipRuntimeTest, MallocOfMoreThanIsFreeFails) {
  Install(MachineWith(1));
  void* memory = nullptr;
  EXPECT_EQ(hipMalloc(&memory, 7 * kGiB + 1), hipErrorOutOfMemory);
  EXPECT_EQ(hipMalloc(&memory, std::numeric_limits<std::size_t>::max()), hipErrorOutOfMemory);
  EXPECT_EQ(memory, nullptr);
  EXPECT_EQ(FreeMemory(), 7 * kGiB);
  EXPECT_EQ(hipMalloc(&memory, 7 * kGiB), hipSuccess);
  EXPECT_EQ(FreeMemory(), 0U);
}

TEST_F(HipRuntimeTest, FreeOfUnknownAddressFails) {
  Install(MachineWith(1));
  int local = 0;
  EXPECT_EQ(hipFree(&local), hipErrorInvalidDevicePointer);
  void* memory = nullptr;
  ASSERT_EQ(hipMalloc(&memory, 1), hipSuccess);
  EXPECT_EQ(hipFree(memory), hipSuccess);
  EXPECT_EQ(hipFree(memory), hipErrorInvalidDevicePointer) << "already freed";
  EXPECT_EQ(hipFree(nullptr), hipSuccess);
}

TEST_F(HipRuntimeTest, MallocOfZeroBytesReturnsNull) {
  Install(MachineWith(1));
  void* memory = &memory;
  EXPECT_EQ(hipMalloc(&memory, 0), hipSuccess);
  EXPECT_EQ(memory, nullptr);
}

TEST_F(HipRuntimeTest, CurrentDeviceIsKeptForEachThread) {
  Install(MachineWith(3));
  ASSERT_EQ(hipSetDevice(2), hipSuccess);
  std::thread([] {
    int device = 7;
    EXPECT_EQ(hipGetDevice(&device), hipSuccess);
    EXPECT_EQ(device, 0);
    EXPECT_EQ(hipSetDevice(1), hipSuccess);
  }).join();
  EXPECT_EQ(CurrentDevice(), 2);
}

TEST_F(HipRuntimeTest, InstallMakesDeviceZeroCurrent) {
  Install(MachineWith(3));
  ASSERT_EQ(hipSetDevice(2), hipSuccess);
  Install(MachineWith(3));
  EXPECT_EQ(CurrentDevice(), 0);
}

TEST_F(HipRuntimeTest, CallsFromManyThreadsAreSerialized) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 200;
  Install(MachineWith(kThreads));
  std::vector<std::thread> threads;
  for (int device = 0; device < kThreads; ++device) {
    threads.emplace_back([device] {
      EXPECT_EQ(hipSetDevice(device), hipSuccess);
      for (int round = 0; round < kRounds; ++round) {
        void* memory = nullptr;
        EXPECT_EQ(hipMalloc(&memory, kGiB), hipSuccess);
        EXPECT_EQ(FreeMemory(), (static_cast<std::size_t>(device) + 1) * 8 * kGiB - 2 * kGiB);
        EXPECT_EQ(hipFree(memory), hipSuccess);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(RecordedCalls().size(), static_cast<std::size_t>(kThreads * (1 + 3 * kRounds)));
}

}  // namespace

}  // namespace kestrel::tests

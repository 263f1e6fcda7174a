#include "tests/hip_binding/operations.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>

#include "hip_binding/device_record.h"
#include "tests/fakes/runtime_library_fake.h"

namespace kestrel::tests {
namespace {

using hip_binding::kRecordOfHip5;
using hip_binding::kRecordOfHip6;
using hip_binding::Origin;

constexpr int kStatus = 17;

int GetDeviceCount(int* count) {
  *count = 5;
  return kStatus;
}

int SetDevice(int device) { return 1000 + device; }

int MemGetInfo(std::size_t* free, std::size_t* total) {
  *free = 1;
  *total = 2;
  return kStatus;
}

const char* GetErrorString(int status) { return status == kStatus ? "seventeen" : "other"; }

int GetDeviceProperties(void* properties, int device) {
  static_cast<char*>(properties)[kRecordOfHip5.gcn_arch_name] = 'g';
  return device;
}

int Throw(int /*device*/) { throw std::runtime_error("of the runtime"); }

// The operations bind to this one runtime for as long as the process lives.
class OperationsTest : public testing::Test {
 protected:
  OperationsTest() {
    static RuntimeFake runtime;
    ResetLoader();
    runtime = {{"hipGetDeviceCount", FunctionOf(GetDeviceCount)},
               {"hipSetDevice", FunctionOf(SetDevice)},
               {"hipMemGetInfo", FunctionOf(MemGetInfo)},
               {"hipGetErrorString", FunctionOf(GetErrorString)},
               {"hipGetDeviceProperties", FunctionOf(GetDeviceProperties)}};
    Loader().candidates = {{Origin::kSearch, "runtime"}};
    Loader().loadable["runtime"] = &runtime;
    runtime_ = &runtime;
  }

  RuntimeFake* runtime_;
};

TEST_F(OperationsTest, DeviceCountAndStatusAreTheRuntimes) {
  int count = 0;
  EXPECT_EQ(hipGetDeviceCount(&count), kStatus);
  EXPECT_EQ(count, 5);
}

TEST_F(OperationsTest, DeviceToSetReachesTheRuntime) { EXPECT_EQ(hipSetDevice(3), 1003); }

TEST_F(OperationsTest, FreeAndTotalMemoryAreTheRuntimes) {
  std::size_t free = 0;
  std::size_t total = 0;
  EXPECT_EQ(hipMemGetInfo(&free, &total), kStatus);
  EXPECT_EQ(free, 1U);
  EXPECT_EQ(total, 2U);
}

TEST_F(OperationsTest, ErrorTextIsTheRuntimes) {
  EXPECT_STREQ(hipGetErrorString(kStatus), "seventeen");
}

TEST_F(OperationsTest, OldPropertiesFunctionFillsTheOldRecord) {
  std::array<char, kRecordOfHip5.size> record{};
  EXPECT_EQ(hipGetDeviceProperties(record.data(), 0), 0);
  EXPECT_EQ(record[kRecordOfHip5.gcn_arch_name], 'g');
}

TEST_F(OperationsTest, NewPropertiesFunctionFillsTheNewRecord) {
  std::array<char, kRecordOfHip6.size> record{};
  EXPECT_EQ(hipGetDevicePropertiesR0600(record.data(), 0), 0);
  EXPECT_EQ(record[kRecordOfHip6.gcn_arch_name], 'g');
}

TEST_F(OperationsTest, ExceptionOfTheRuntimeReachesTheCaller) {
  (*runtime_)["hipSetDevice"] = FunctionOf(Throw);
  EXPECT_THROW(hipSetDevice(0), std::runtime_error);
}

}  // namespace
}  // namespace kestrel::tests

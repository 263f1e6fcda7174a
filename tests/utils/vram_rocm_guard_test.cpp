// The VRAM meters over a runtime that throws, or that fails although it has written its figures.

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/fakes/cerr_recorder.h"
#include "tests/fakes/hip_fake.h"
#include "utils/vram_rocm.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::getAvailableVRAM_ROCm;
using kestrel_utils::getMachinePhysicalVRAM_ROCm;
using kestrel_utils::kStandardError;
using Calls = std::vector<std::string>;

void ThrowBadAlloc() { throw std::bad_alloc(); }
void ThrowRuntimeError() { throw std::runtime_error("runtime"); }
void ThrowNumber() { throw 1; }

class VramRocmGuardTest : public testing::Test {
 protected:
  VramRocmGuardTest() {
    Hip() = {};
    Hip().device_count = 2;
    Hip().properties_memory = 1000;
    Hip().free_memory = 30;
    Hip().total_memory = 40;
  }

  CerrRecorder cerr_;
};

TEST_F(VramRocmGuardTest, BadAllocOfTheCountIsReportedAsOutOfMemory) {
  Hip().actions["hipGetDeviceCount"] = ThrowBadAlloc;
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 0);
  EXPECT_EQ(cerr_.text(), "hipGetDeviceCount failed: out of memory\n");
}

TEST_F(VramRocmGuardTest, AnyOtherExceptionOfTheCountIsReportedAsUnknown) {
  for (const auto action : {ThrowRuntimeError, ThrowNumber}) {
    const CerrRecorder cerr;
    Hip().actions["hipGetDeviceCount"] = action;
    EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 0);
    EXPECT_EQ(cerr.text(), "hipGetDeviceCount failed: unknown error\n");
  }
}

TEST_F(VramRocmGuardTest, ExceptionOfTheDevicePropertiesIsReportedForEachDevice) {
  Hip().actions["hipGetDeviceProperties"] = ThrowBadAlloc;
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 0);
  EXPECT_EQ(cerr_.text(),
            "hipGetDeviceProperties failed for device 0: out of memory\n"
            "hipGetDeviceProperties failed for device 1: out of memory\n");
}

TEST_F(VramRocmGuardTest, ExceptionOfTheErrorTextLeavesTheMessageWithoutText) {
  Hip().statuses["hipGetDeviceCount"] = hipErrorUnknown;
  Hip().actions["hipGetErrorString"] = ThrowBadAlloc;
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 0);
  EXPECT_EQ(cerr_.text(), "hipGetDeviceCount failed: \n");
}

TEST_F(VramRocmGuardTest, StatusWithoutTextLeavesTheMessageWithoutText) {
  Hip().statuses["hipGetDeviceCount"] = hipErrorNotInitialized;
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 0);
  EXPECT_EQ(cerr_.text(), "hipGetDeviceCount failed: \n");
}

TEST_F(VramRocmGuardTest, FailedPropertiesCountNothingThoughTheyWereWritten) {
  Hip().statuses["hipGetDeviceProperties"] = hipErrorUnknown;
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 0);
}

TEST_F(VramRocmGuardTest, ExceptionOfAnyCallReadsAsNoFreeMemory) {
  for (const char* operation : {"hipGetDeviceCount", "hipSetDevice", "hipMemGetInfo"}) {
    for (const auto action : {ThrowBadAlloc, ThrowRuntimeError, ThrowNumber}) {
      Hip().actions = {{operation, action}};
      EXPECT_EQ(getAvailableVRAM_ROCm(false), 0) << operation;
      EXPECT_EQ(getAvailableVRAM_ROCm(true), 0) << operation;
    }
  }
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(VramRocmGuardTest, FailedCallReadsAsNoFreeMemoryThoughTheFigureWasWritten) {
  for (const char* operation : {"hipSetDevice", "hipMemGetInfo"}) {
    Hip().statuses = {{operation, hipErrorUnknown}};
    Hip().calls.clear();
    EXPECT_EQ(getAvailableVRAM_ROCm(false), 0) << operation;
    EXPECT_EQ(Hip().calls, (Calls{"hipGetDeviceCount", "hipSetDevice", "hipMemGetInfo"}));
    EXPECT_EQ(getAvailableVRAM_ROCm(true), 0) << operation;
  }
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(VramRocmGuardTest, FiguresThatTheRuntimeDoesNotWriteAreZero) {
  Hip().silent = {"hipGetDeviceProperties", "hipMemGetInfo"};
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 0);
  EXPECT_EQ(getAvailableVRAM_ROCm(true), 0);
  EXPECT_EQ(cerr_.text(), "");
  Hip().silent = {"hipGetDeviceCount"};
  Hip().calls.clear();
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 0);
  EXPECT_EQ(getAvailableVRAM_ROCm(true), 0);
  EXPECT_EQ(getAvailableVRAM_ROCm(false), 0);
  EXPECT_EQ(Hip().calls, Calls(3, "hipGetDeviceCount"));
}

// The status of hipGetDeviceCount is ignored here, by contract.
TEST_F(VramRocmGuardTest, FailedCountThatWroteTheFigureIsUsedForFreeMemory) {
  Hip().statuses["hipGetDeviceCount"] = hipErrorNotInitialized;
  EXPECT_EQ(getAvailableVRAM_ROCm(false), 30);
  EXPECT_EQ(getAvailableVRAM_ROCm(true), 60);
}

}  // namespace
}  // namespace kestrel::tests

// The VRAM meters over a runtime that fails and fills in its figures all the same. This program
// brings its own HIP.

#include <gtest/gtest.h>
#include <hip/hip_runtime_api.h>

#include <cstddef>

#include "tests/fakes/cerr_recorder.h"
#include "utils/vram_rocm.h"

hipError_t hipGetDeviceCount(int* count) {
  *count = 2;
  return hipErrorNotInitialized;
}

hipError_t hipGetDeviceProperties(hipDeviceProp_t* properties, int /*device*/) {
  properties->totalGlobalMem = 1000;
  return hipErrorUnknown;
}

hipError_t hipSetDevice(int /*device*/) { return hipErrorInvalidDevice; }

hipError_t hipMemGetInfo(std::size_t* free, std::size_t* total) {
  *free = 30;
  *total = 40;
  return hipErrorUnknown;
}

const char* hipGetErrorString(hipError_t /*status*/) { return nullptr; }

namespace kestrel::tests {
namespace {

using kestrel_utils::getAvailableVRAM_ROCm;
using kestrel_utils::getMachinePhysicalVRAM_ROCm;
using kestrel_utils::kStandardError;

TEST(LyingRuntimeTest, FreeMemoryIsTakenFromTheFiguresAlone) {
  EXPECT_EQ(getAvailableVRAM_ROCm(false), 30);
  EXPECT_EQ(getAvailableVRAM_ROCm(true), 60);
}

// And a status without a text leaves the message without one.
TEST(LyingRuntimeTest, TotalMemoryGoesByTheStatus) {
  const CerrRecorder cerr;
  EXPECT_EQ(getMachinePhysicalVRAM_ROCm(true, kStandardError), 0);
  EXPECT_EQ(cerr.text(), "hipGetDeviceCount failed: \n");
}

}  // namespace
}  // namespace kestrel::tests

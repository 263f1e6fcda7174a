#include "utils/vram_rocm.h"

#include <hip/hip_runtime_api.h>

#include <cstddef>
#include <cstdint>
#include <optional>

#include "utils/diagnostic_line.h"

namespace kestrel_utils {

namespace {

// The runtime's own words for a status; empty should it have none.
const char* ErrorText(hipError_t status) noexcept {
  const char* text = hipGetErrorString(status);
  return text != nullptr ? text : "";
}

std::optional<std::uint64_t> TotalMemoryOf(int device, DiagnosticSink sink) noexcept {
  hipDeviceProp_t properties{};
  const hipError_t status = hipGetDeviceProperties(&properties, device);
  if (status != hipSuccess) {
    (DiagnosticLine(sink) << "hipGetDeviceProperties failed for device " << device << ": "
                          << ErrorText(status))
        .EndLine();
    return std::nullopt;
  }
  return properties.totalGlobalMem;
}

// The statuses are not looked at: a query that fails leaves the figure at 0.
std::uint64_t FreeMemoryOf(int device) noexcept {
  std::size_t free = 0;
  std::size_t total = 0;
  static_cast<void>(hipSetDevice(device));
  static_cast<void>(hipMemGetInfo(&free, &total));
  return free;
}

}  // namespace

// Sums are unsigned, so that a runtime's nonsense figures wrap rather than overflow.

long long getMachinePhysicalVRAM_ROCm(bool allDevices, DiagnosticSink sink) noexcept {
  int count = 0;
  const hipError_t status = hipGetDeviceCount(&count);
  if (status != hipSuccess) {
    (DiagnosticLine(sink) << "hipGetDeviceCount failed: " << ErrorText(status)).EndLine();
    return 0;
  }
  if (count == 0) {
    (DiagnosticLine(sink) << "getMachinePhysicalVRAM_ROCm no HIP devices found\n").Write();
    return 0;
  }
  std::uint64_t sum = 0;
  for (int device = 0; device < count; ++device) {
    const auto total = TotalMemoryOf(device, sink);
    sum += total.value_or(0);
    if (total && !allDevices) {
      break;
    }
  }
  return static_cast<long long>(sum);
}

long long getAvailableVRAM_ROCm(bool allDevices) noexcept {
  int count = 0;
  static_cast<void>(hipGetDeviceCount(&count));
  if (count < 1) {
    return 0;
  }
  if (!allDevices) {
    return static_cast<long long>(FreeMemoryOf(0));
  }
  std::uint64_t sum = 0;
  for (int device = 0; device < count; ++device) {
    sum += FreeMemoryOf(device);
  }
  return static_cast<long long>(sum);
}

}  // namespace kestrel_utils

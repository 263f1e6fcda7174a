#include "utils/vram_rocm.h"

#include <hip/hip_runtime_api.h>

#include <cstdint>
#include <new>
#include <optional>

#include "utils/diagnostic_line.h"

// Message texts are fixed, including their wording.

namespace kestrel_utils {

namespace {

// HIP's functions are C functions, yet the runtime lets its own C++ exceptions out of them, such as
// std::bad_alloc when memory runs short. In a meter, which is noexcept, they would end the host. On
// Windows only the exceptions of this library's own compiler can be caught.
template <typename Call>
hipError_t Guarded(Call call) noexcept {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return hipErrorOutOfMemory;
  } catch (...) {
    return hipErrorUnknown;
  }
}

std::optional<std::uint64_t> TotalMemoryOf(int device, DiagnosticSink sink) noexcept {
  hipDeviceProp_t properties{};
  const hipError_t status = Guarded([&] { return hipGetDeviceProperties(&properties, device); });
  if (status != hipSuccess) {
    (DiagnosticLine(sink) << "hipGetDeviceProperties failed for device " << device << ": "
                          << ErrorText(status))
        .EndLine();
    return std::nullopt;
  }
  return properties.totalGlobalMem;
}

std::uint64_t FreeMemoryOf(int device) noexcept {
  const DeviceMemory memory = QueryDeviceMemory(device);
  return memory.selected == hipSuccess && memory.queried == hipSuccess ? memory.free : 0;
}

}  // namespace

hipError_t DeviceCount(int& count) noexcept {
  return Guarded([&] { return hipGetDeviceCount(&count); });
}

const char* ErrorText(hipError_t status) noexcept {
  const char* text = nullptr;
  static_cast<void>(Guarded([&] {
    text = hipGetErrorString(status);
    return hipSuccess;
  }));
  return text != nullptr ? text : "";
}

// Which HIP calls a meter makes is fixed, so the second is made either way.
DeviceMemory QueryDeviceMemory(int device) noexcept {
  DeviceMemory memory;
  memory.selected = Guarded([&] { return hipSetDevice(device); });
  memory.queried = Guarded([&] { return hipMemGetInfo(&memory.free, &memory.total); });
  return memory;
}

// Sums are unsigned, so that nonsense figures of a runtime wrap instead of overflowing.

long long getMachinePhysicalVRAM_ROCm(bool allDevices, DiagnosticSink sink) noexcept {
  int count = 0;
  const hipError_t status = DeviceCount(count);
  if (status != hipSuccess) {
    (DiagnosticLine(sink) << "hipGetDeviceCount failed: " << ErrorText(status)).EndLine();
    return 0;
  }
  if (count == 0) {
    (DiagnosticLine(sink) << "getMachinePhysicalVRAM_ROCm no HIP devices found\n").Write();
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
  static_cast<void>(DeviceCount(count));
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

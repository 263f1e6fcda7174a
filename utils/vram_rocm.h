#pragma once

#include <hip/hip_runtime_api.h>

#include <cstddef>

#include "utils/diagnostic_line.h"

namespace kestrel_utils {

// The number of HIP devices, and the status of the query.
hipError_t DeviceCount(int& count) noexcept;

// The runtime's text for a status; empty if it has none.
const char* ErrorText(hipError_t status) noexcept;

// What the runtime returned for one device. If it could not be selected, the figures are those of
// another.
struct DeviceMemory {
  hipError_t selected = hipErrorUnknown;
  hipError_t queried = hipErrorUnknown;
  std::size_t free = 0;   // bytes
  std::size_t total = 0;  // bytes
};

// Leaves the device current on the calling thread.
DeviceMemory QueryDeviceMemory(int device) noexcept;

// Total VRAM in bytes from the device properties: the sum over all HIP devices, or that of the
// first device that answers. Reports failures on standard error; 0 when nothing answers.
long long getMachinePhysicalVRAM_ROCm(bool allDevices, DiagnosticSink sink) noexcept;

// Free VRAM in bytes: the sum over all HIP devices, or that of device 0. Silent; a device that
// does not answer counts 0. Leaves the last device asked current on the calling thread.
long long getAvailableVRAM_ROCm(bool allDevices) noexcept;

}  // namespace kestrel_utils

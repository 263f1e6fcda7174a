#pragma once

#include <hip/hip_runtime_api.h>

#include <cstddef>

#include "utils/diagnostic_line.h"

namespace kestrel_utils {

// Writes the number of HIP devices and returns the status of the query.
hipError_t DeviceCount(int& count) noexcept;

// The runtime's text for a status; empty if it has none.
const char* ErrorText(hipError_t status) noexcept;

// The outcome of hipSetDevice and hipMemGetInfo for one device. If it could not be selected, the
// figures are those of another.
struct DeviceMemory {
  hipError_t selected = hipErrorUnknown;
  hipError_t queried = hipErrorUnknown;
  std::size_t free = 0;   // bytes
  std::size_t total = 0;  // bytes
};

// Leaves the device current on the calling thread.
DeviceMemory QueryDeviceMemory(int device) noexcept;

// MemoryObserver uses one value of `allDevices` for each function. The other is part of these back
// ends by contract, and so is that the two differ: properties here and the memory query there,
// reports here and none there.

// Returns the total VRAM in bytes from the device properties: the sum over all HIP devices, or that
// of the first device whose properties can be read. Reports failures to `sink`; returns 0 if no
// device can be read.
long long getMachinePhysicalVRAM_ROCm(bool allDevices, DiagnosticSink sink) noexcept;

// Returns the free VRAM in bytes from the memory query: the sum over all HIP devices, or that of
// device 0. Reports nothing; a device that cannot be selected and queried adds 0. Leaves the last
// device that could be selected as the calling thread's current one.
long long getAvailableVRAM_ROCm(bool allDevices) noexcept;

}  // namespace kestrel_utils

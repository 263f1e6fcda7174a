#pragma once

#include "utils/diagnostic_line.h"

namespace kestrel_utils {

// Total VRAM in bytes from the device properties: the sum over all HIP devices, or that of the
// first device that answers. Reports failures on standard error; 0 when nothing answers.
long long getMachinePhysicalVRAM_ROCm(bool allDevices, DiagnosticSink sink) noexcept;

// Free VRAM in bytes: the sum over all HIP devices, or that of device 0. Silent; a device that
// does not answer counts 0. Leaves the last device asked current on the calling thread.
long long getAvailableVRAM_ROCm(bool allDevices) noexcept;

}  // namespace kestrel_utils

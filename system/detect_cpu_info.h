#pragma once

#include "system/cpu_info.h"

namespace kestrel::system {

// Returns the architecture and the extensions of the processor that executes this call. Throws
// std::runtime_error("Unsupported processor architecture") for any architecture but x86-64 and Arm.
//
// A function of its own, and an exception for an expected failure, because that is its contract:
// SurveyCpu turns std::runtime_error from here into a status and lets everything else pass.
CpuInfo DetectCpuInfo();

}  // namespace kestrel::system

#pragma once

#include "system/cpu_info.h"

namespace kestrel::system {

// Reads the architecture and the extensions of the processor that executes this call.
// Throws std::runtime_error("Unsupported processor architecture") for any other than
// x86-64 and Arm.
CpuInfo DetectCpuInfo();

}  // namespace kestrel::system

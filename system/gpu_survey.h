#pragma once

#include <kestrelcore_export.h>

#include <utility>
#include <vector>

#include "system/gpu_info.h"
#include "system/result.h"

namespace kestrel::system {

/// Lists every GPU that the HIP runtime sees, in ascending device order. All or nothing: the list
/// is empty beside any code but `Success`.
///
/// Returns (`Success`, the list; empty when the runtime counts no device), (`NoDevices`, message)
/// when the runtime cannot count its devices, or (`DeviceQueryFailed`, message) naming the step and
/// the device at fault. Throws nothing but std::bad_alloc. Blocks for as long as the HIP runtime
/// does, which at its first call in a process starts itself up.
///
/// Thread effect: the calling thread's current HIP device is left at the last one surveyed; it is
/// not restored. Concurrent calls are as safe as the HIP runtime's own.
[[nodiscard]] KESTRELCORE_EXPORT std::pair<Result, std::vector<GpuInfo>> SurveyGpus();

}  // namespace kestrel::system

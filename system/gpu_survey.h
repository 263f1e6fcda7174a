#pragma once

#include <kestrelcore_export.h>

#include <utility>
#include <vector>

#include "system/gpu_info.h"
#include "system/result.h"

namespace kestrel::system {

/// Lists the GPUs that the HIP runtime reports, in ascending device order. All or nothing: with any
/// code but `Success` the list is empty.
///
/// Name, architecture name and integration come from hipGetDeviceProperties, the total memory from
/// hipMemGetInfo: the amount that allocations count against, which may differ from that in the
/// properties.
///
/// Returns (`Success`, the list), also with an empty list if the runtime counts no devices;
/// (`NoDevices`, "Error trying to query ROCm gpus: No hip devices found!") if it fails to count
/// them; or (`DeviceQueryFailed`, message) if a query fails, with a message that names the query
/// and the device.
///
/// Throws std::bad_alloc, and whatever the HIP runtime throws passes through: its C functions let
/// its C++ exceptions out, such as std::bad_alloc when memory runs short.
///
/// Blocks for as long as the HIP runtime does, which initialises itself at the first call in a
/// process. Thread effect: leaves the last device that could be selected as the calling thread's
/// current HIP device and does not restore the one before. Concurrent calls are as safe as those of
/// the HIP runtime.
[[nodiscard]] KESTRELCORE_EXPORT std::pair<Result, std::vector<GpuInfo>> SurveyGpus();

}  // namespace kestrel::system

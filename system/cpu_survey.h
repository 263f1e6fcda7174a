#pragma once

#include <kestrelcore_export.h>

#include <utility>

#include "system/cpu_info.h"
#include "system/result.h"

namespace kestrel::system {

/// Surveys the processor: its architecture as the operating system reports it (GetSystemInfo on
/// Windows, uname(2) on Linux), and AVX and AVX2 as CPUID reports them (leaf 1 ECX bit 28, leaf 7
/// EBX bit 5). The extensions are those that the processor implements: whether the operating system
/// has enabled the wide registers is not checked.
///
/// Returns (`Success`, the description), or (`Failure`, "Unsupported processor architecture") with
/// a default `CpuInfo`. Throws only std::bad_alloc. Does not block. May be called from any number
/// of threads at once.
[[nodiscard]] KESTRELCORE_EXPORT std::pair<Result, CpuInfo> SurveyCpu();

}  // namespace kestrel::system

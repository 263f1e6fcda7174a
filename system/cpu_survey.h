#pragma once

#include <kestrelcore_export.h>

#include <utility>

#include "system/cpu_info.h"
#include "system/result.h"

namespace kestrel::system {

/// Surveys the processor: its architecture as the operating system names it, and AVX and AVX2 as
/// CPUID shows them. It tells what the processor implements; whether the operating system has
/// enabled the wide registers is not looked at.
///
/// Returns (`Success`, the description), or (`Failure`, "Unsupported processor architecture") with
/// a default `CpuInfo`. Throws nothing but std::bad_alloc. Does not block; safe from any thread.
[[nodiscard]] KESTRELCORE_EXPORT std::pair<Result, CpuInfo> SurveyCpu();

}  // namespace kestrel::system

#pragma once

/// kestrelcore's survey interface: what the machine offers. This header includes all others of it.
///
/// Every call measures afresh, on the caller's thread, and returns plain values that the caller
/// owns. The surveys keep no state, start no threads, read no configuration and write no output. (A
/// library built with KESTRELCORE_HIP=lazy remembers one thing: the HIP runtime that it has found.)
/// Expected failures are reported by the `Result` next to the data. The surveys catch nothing else:
/// std::bad_alloc and whatever the HIP runtime throws pass through. Strings, sets, maps and vectors
/// cross the library boundary by value, so host and library must be built with the same C++
/// standard library.

#include <kestrelcore_export.h>

#include <utility>
#include <vector>

#include "system/cpu_info.h"
#include "system/cpu_survey.h"
#include "system/gpu_info.h"
#include "system/gpu_survey.h"
#include "system/result.h"

namespace kestrel::system {

/// The outcomes of both surveys. There is no overall status: each `Result` is that of the data in
/// its own pair. By default both codes are `Unknown` and all data is empty.
struct HardwareSurveyResult {
  std::pair<Result, std::vector<GpuInfo>> gpuSurvey;
  std::pair<Result, CpuInfo> cpuSurvey;

  KESTRELCORE_EXPORT HardwareSurveyResult();
  KESTRELCORE_EXPORT HardwareSurveyResult(const HardwareSurveyResult& other);
  KESTRELCORE_EXPORT HardwareSurveyResult(HardwareSurveyResult&& other) noexcept;
  KESTRELCORE_EXPORT HardwareSurveyResult& operator=(const HardwareSurveyResult& other);
  KESTRELCORE_EXPORT HardwareSurveyResult& operator=(HardwareSurveyResult&& other) noexcept;
  KESTRELCORE_EXPORT ~HardwareSurveyResult();
};

/// Surveys the GPUs, then the processor, also if the first fails. The pairs are those of
/// `SurveyGpus` and `SurveyCpu`; the data of a failed survey is empty. Blocks, throws and changes
/// the calling thread's current HIP device as `SurveyGpus` does.
[[nodiscard]] KESTRELCORE_EXPORT HardwareSurveyResult SurveyHardware();

}  // namespace kestrel::system

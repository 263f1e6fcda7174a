#pragma once

/// kestrelcore's survey interface: what the machine offers. Including this header is enough.
///
/// Every call measures afresh, on the caller's thread, and returns plain values that the caller
/// owns. The library keeps no state, starts no thread, reads no configuration and writes nothing
/// here. An expected failure travels in the `Result` beside the data; nothing but std::bad_alloc
/// is thrown. Strings, sets, maps and vectors cross the library's boundary by value, so host and
/// library are built against the same C++ standard library.

#include <kestrelcore_export.h>

#include <utility>
#include <vector>

#include "system/cpu_info.h"
#include "system/cpu_survey.h"
#include "system/gpu_info.h"
#include "system/gpu_survey.h"
#include "system/result.h"

namespace kestrel::system {

/// Both surveys side by side. There is no overall status: each `Result` speaks for the data beside
/// it alone. By default both codes are `Unknown` and both data empty.
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

/// Surveys the GPUs, then the processor, whatever became of the GPUs; each pair is what
/// `SurveyGpus` and `SurveyCpu` return, with empty data beside a failure. Blocks and changes the
/// calling thread's current HIP device as `SurveyGpus` does.
[[nodiscard]] KESTRELCORE_EXPORT HardwareSurveyResult SurveyHardware();

}  // namespace kestrel::system

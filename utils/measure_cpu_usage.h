#pragma once

#include "utils/diagnostic_line.h"

namespace kestrel_utils {

// GetCpuUsage, with its diagnostics written to `sink`.
float MeasureCpuUsage(int pid, int split_ms, DiagnosticSink sink) noexcept;

}  // namespace kestrel_utils

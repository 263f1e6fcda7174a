#pragma once

#include "utils/diagnostic_line.h"

namespace kestrel_utils {

// The members of MemoryObserver that report failures, with their diagnostics written to `sink`. The
// VRAM meters are in utils/vram_rocm.h; the remaining members report nothing.

// MemoryObserver::getProcessUsedRAM
long long MeasureProcessUsedRam(int pid, DiagnosticSink sink) noexcept;

// MemoryObserver::willFailToAllocate
bool PredictAllocationFailure(long long bytes, DiagnosticSink sink) noexcept;

}  // namespace kestrel_utils

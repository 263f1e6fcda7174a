#pragma once

#include <cstdint>

#include "platform/platform.h"
#include "utils/diagnostic_line.h"

namespace kestrel_utils {

// The members of MemoryObserver that report failures, with their diagnostics written to `sink`. The
// VRAM meters are in utils/vram_rocm.h; the remaining members report nothing.

// MemoryObserver::getProcessUsedRAM
long long MeasureProcessUsedRam(int pid, DiagnosticSink sink) noexcept;

// MemoryObserver::willFailToAllocate
bool PredictAllocationFailure(long long bytes, DiagnosticSink sink) noexcept;

// Returns by how many bytes an allocation exceeds what the system can provide; 0 if it fits. This
// is the rule of PredictAllocationFailure.
std::uint64_t MissingBytes(std::uint64_t bytes,
                           const kestrel::platform::MemoryStatus& status) noexcept;

}  // namespace kestrel_utils

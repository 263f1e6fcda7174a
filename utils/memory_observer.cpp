#include "utils/memory_observer.h"

#include <algorithm>
#include <cstdint>

#include "platform/platform.h"
#include "utils/diagnostic_line.h"
#include "utils/measure_memory.h"
#include "utils/vram_rocm.h"

namespace kestrel_utils {

namespace platform = kestrel::platform;

// Message texts are fixed, including their wording.

long long MeasureProcessUsedRam(int pid, DiagnosticSink sink) noexcept {
  if (pid < 1) {
    (DiagnosticLine(sink) << "Failed to get used RAM for PID '" << pid
                          << "' since PID must be positive!")
        .EndLine();
    return MemoryObserver::kRamMeterErrorCode;
  }
  const auto process = platform::Process::Open(pid, platform::ProcessRights::kMemory);
  if (!process) {
    (DiagnosticLine(sink) << "Failed to open process with PID " << pid).EndLine();
    return MemoryObserver::kRamMeterErrorCode;
  }
  const auto resident = process->ResidentBytes();
  return resident ? static_cast<long long>(*resident) : MemoryObserver::kRamMeterErrorCode;
}

bool PredictAllocationFailure(long long bytes, DiagnosticSink sink) noexcept {
  const auto status = platform::QueryMemoryStatus();
  if (!status) {
    (DiagnosticLine(sink) << "Failed to get global memory status.").EndLine();
    return false;
  }
  return MissingBytes(static_cast<std::uint64_t>(bytes), *status) > 0;
}

std::uint64_t MissingBytes(std::uint64_t bytes, const platform::MemoryStatus& status) noexcept {
  const std::uint64_t beyond = bytes - std::min(bytes, status.available_physical);
  return beyond - std::min(beyond, status.committable);
}

const int MemoryObserver::kRamMeterErrorCode = -1;

// Not inline, because they are exported functions.
MemoryObserver& MemoryObserver::operator=(const MemoryObserver&) noexcept = default;
MemoryObserver& MemoryObserver::operator=(MemoryObserver&&) noexcept = default;

// Which members are static is part of the interface and does not change.
// NOLINTBEGIN(readability-convert-member-functions-to-static)

long long MemoryObserver::getMachinePhysicalRAM() noexcept {
  return static_cast<long long>(platform::QueryTotalPhysicalMemory().value_or(0));
}

long long MemoryObserver::getAvailableRAM() const noexcept {
  const auto status = platform::QueryMemoryStatus().value_or(platform::MemoryStatus{});
  return static_cast<long long>(status.available_physical);
}

long long MemoryObserver::getUsedRAM() const noexcept {
  const auto status = platform::QueryMemoryStatus().value_or(platform::MemoryStatus{});
  return static_cast<long long>(status.total_physical - status.available_physical);
}

long long MemoryObserver::getProcessUsedRAM(int pid) noexcept {
  return MeasureProcessUsedRam(pid, kStandardError);
}

long long MemoryObserver::getMachinePhysicalVRAM() noexcept {
  return getMachinePhysicalVRAM_ROCm(/*allDevices=*/true, kStandardError);
}

long long MemoryObserver::getAvailableVRAM() const noexcept {
  return getAvailableVRAM_ROCm(/*allDevices=*/false);
}

bool MemoryObserver::willFailToAllocate(long long bytes) const noexcept {
  return PredictAllocationFailure(bytes, kStandardError);
}

// NOLINTEND(readability-convert-member-functions-to-static)

}  // namespace kestrel_utils

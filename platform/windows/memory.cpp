#include <windows.h>

#include "platform/platform.h"

namespace kestrel::platform {

std::optional<MemoryStatus> QueryMemoryStatus() noexcept {
  static_assert(sizeof(MEMORYSTATUSEX) == 64, "the size that GlobalMemoryStatusEx expects");
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof(status);
  if (GlobalMemoryStatusEx(&status) == 0) {
    return std::nullopt;
  }
  return MemoryStatus{status.ullTotalPhys, status.ullAvailPhys, status.ullAvailPageFile};
}

// ullAvailPhys is always the machine's. A job object's limit and the commit limit of the system
// bound ullAvailPageFile alone.
std::optional<MemoryStatus> QueryMemoryLimit(GroupDirectory& directory) noexcept {
  directory.front() = '\0';
  return QueryMemoryStatus();
}

// No call for the total alone returns the same figure: GetPhysicallyInstalledSystemMemory includes
// the memory that the firmware reserves.
std::optional<std::uint64_t> QueryTotalPhysicalMemory() noexcept {
  const auto status = QueryMemoryStatus();
  return status ? std::optional(status->total_physical) : std::nullopt;
}

}  // namespace kestrel::platform

// psapi.h needs windows.h before it.
// clang-format off
#include <windows.h>
#include <psapi.h>
// clang-format on

#include "platform/platform.h"

namespace kestrel::platform {

// The handle is the process handle. While one is open, the system keeps the record of the process
// and does not reuse its pid. For a process that has ended it returns the final times.

namespace {

// A HANDLE is a number stored in a pointer type.
HANDLE ToHandle(std::intptr_t handle) noexcept {
  return reinterpret_cast<HANDLE>(handle);  // NOLINT(performance-no-int-to-ptr)
}

// The rights that the documentation of GetProcessTimes and GetProcessMemoryInfo requires.
DWORD AccessFor(ProcessRights rights) noexcept {
  return rights == ProcessRights::kTimes ? PROCESS_QUERY_INFORMATION
                                         : PROCESS_QUERY_INFORMATION | PROCESS_VM_READ;
}

// FILETIME holds a 64-bit count of 100 ns in two halves and is not aligned as a 64-bit number.
std::uint64_t ToTimeUnits(const FILETIME& time) noexcept {
  return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

}  // namespace

std::optional<Process> Process::Open(int pid, ProcessRights rights) noexcept {
  void* const handle =
      OpenProcess(AccessFor(rights), /*bInheritHandle=*/FALSE, static_cast<DWORD>(pid));
  if (handle == nullptr) {
    return std::nullopt;
  }
  return Process(pid, reinterpret_cast<std::intptr_t>(handle));
}

void Process::Close(std::intptr_t handle) noexcept { CloseHandle(ToHandle(handle)); }

std::optional<ProcessTimes> Process::Times() const noexcept {
  FILETIME creation{};
  FILETIME exit{};
  FILETIME kernel{};
  FILETIME user{};
  if (GetProcessTimes(ToHandle(handle_), &creation, &exit, &kernel, &user) == 0) {
    return std::nullopt;
  }
  return ProcessTimes{ToTimeUnits(kernel), ToTimeUnits(user)};
}

std::optional<std::uint64_t> Process::ResidentBytes() const noexcept {
  static_assert(sizeof(PROCESS_MEMORY_COUNTERS) == 72, "the size on 64-bit Windows");
  PROCESS_MEMORY_COUNTERS counters{};
  if (K32GetProcessMemoryInfo(ToHandle(handle_), &counters, sizeof(counters)) == 0) {
    return std::nullopt;
  }
  return counters.WorkingSetSize;
}

}  // namespace kestrel::platform

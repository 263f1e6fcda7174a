#pragma once

#include <cstdint>
#include <optional>
#include <utility>

// The seam to the operating system: raw figures in the terms of the Windows system services, and
// nothing else. Each function is defined once in platform/windows, once in platform/linux and once
// in tests/fakes; the linker binds one of them. Nothing here throws, allocates memory or keeps
// anything between calls, and all of it may be called from any thread.

namespace kestrel::platform {

// wProcessorArchitecture of the Windows SYSTEM_INFO record: 9 x86-64, 12 Arm64, 5 32-bit Arm,
// 0 32-bit x86, 0xFFFF anything else.
[[nodiscard]] std::uint16_t ProcessorArchitecture() noexcept;

struct CpuidRegisters {
  std::uint32_t eax = 0;
  std::uint32_t ebx = 0;
  std::uint32_t ecx = 0;
  std::uint32_t edx = 0;
};

// Executes CPUID on the calling thread's processor. The highest supported leaf is not consulted.
[[nodiscard]] CpuidRegisters Cpuid(std::uint32_t leaf, std::uint32_t subleaf) noexcept;

// Logical processors in use by the operating system; at least 1.
[[nodiscard]] std::uint32_t LogicalProcessorCount() noexcept;

struct MemoryStatus {
  std::uint64_t total_physical = 0;      // bytes
  std::uint64_t available_physical = 0;  // bytes that this process could have without swapping
  std::uint64_t committable = 0;         // bytes that it could have beyond those
};

// All three figures from one moment; nothing if the system does not tell.
[[nodiscard]] std::optional<MemoryStatus> QueryMemoryStatus() noexcept;

// The machine's physical RAM in bytes, by the cheapest call there is.
[[nodiscard]] std::optional<std::uint64_t> QueryTotalPhysicalMemory() noexcept;

// What an opened process will be asked for.
enum class ProcessRights : std::uint8_t { kTimes, kMemory };

// Processor time used since the process began, in units of 100 ns. Only the sum of the two is
// exact on every system: Linux gives it all as user time.
struct ProcessTimes {
  std::uint64_t kernel = 0;
  std::uint64_t user = 0;
};

// A handle that stays with the process it was opened for, even after that has ended and its pid
// has been given away. Closes itself.
class Process {
 public:
  // Nothing if there is no such process, the rights are refused, or this process may open no more.
  // The id of a thread is not a process.
  [[nodiscard]] static std::optional<Process> Open(int pid, ProcessRights rights) noexcept;

  Process(Process&& other) noexcept
      : pid_(other.pid_), handle_(std::exchange(other.handle_, kNoHandle)) {}
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  Process& operator=(Process&&) = delete;
  ~Process() {
    if (handle_ != kNoHandle) {
      Close(handle_);
    }
  }

  // Nothing if the process is gone, or the system does not tell. Needs kTimes.
  [[nodiscard]] std::optional<ProcessTimes> Times() const noexcept;

  // The resident set (working set) in bytes; nothing as above. Needs kMemory.
  [[nodiscard]] std::optional<std::uint64_t> ResidentBytes() const noexcept;

 private:
  static constexpr std::intptr_t kNoHandle = -1;

  Process(int pid, std::intptr_t handle) noexcept : pid_(pid), handle_(handle) {}
  static void Close(std::intptr_t handle) noexcept;

  int pid_;
  std::intptr_t handle_;  // a file descriptor or a HANDLE
};

// A clock that never goes back, in nanoseconds from a point of the system's choice.
[[nodiscard]] std::int64_t SteadyClockNanoseconds() noexcept;

// Sleeps until that clock reaches the deadline; may return early, so the caller looks at the
// clock again.
void SleepUntil(std::int64_t deadline_nanoseconds) noexcept;

}  // namespace kestrel::platform

#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <utility>

// The seam to the operating system: raw figures in the terms of the Windows system services. Each
// function is defined once in platform/windows, once in platform/linux and once in tests/fakes; the
// linker binds one of them. No function throws, allocates memory or keeps state between calls, and
// each may be called from any thread.

namespace kestrel::platform {

// wProcessorArchitecture of the Windows SYSTEM_INFO record: 9 for x86-64, 12 for Arm64, 5 for
// 32-bit Arm, 0 for 32-bit x86, 0xFFFF for any other.
[[nodiscard]] std::uint16_t ProcessorArchitecture() noexcept;

struct CpuidRegisters {
  std::uint32_t eax = 0;
  std::uint32_t ebx = 0;
  std::uint32_t ecx = 0;
  std::uint32_t edx = 0;
};

// Executes CPUID on the calling thread's processor. Does not check that the leaf is supported.
[[nodiscard]] CpuidRegisters Cpuid(std::uint32_t leaf, std::uint32_t subleaf) noexcept;

// Returns the number of logical processors that the operating system uses, at least 1; `nullopt` if
// it cannot be read (on Windows it always can).
[[nodiscard]] std::optional<std::uint32_t> LogicalProcessorCount() noexcept;

// Which limit decides how much memory is available.
enum class MemoryLimit : std::uint8_t {
  kMachine,      // the machine's free memory
  kMemoryGroup,  // the limit of a memory group, such as a container's; Linux only
  kCommitLimit,  // the rest of the commit limit, under strict overcommit; Linux only
};

struct MemoryStatus {
  std::uint64_t total_physical = 0;           // bytes
  std::uint64_t available_physical = 0;       // bytes that this process can get without swapping
  std::uint64_t committable = 0;              // bytes that it can get beyond those
  MemoryLimit limit = MemoryLimit::kMachine;  // what decides available_physical
};

// Returns all figures, read in one query; `nullopt` if the query fails.
[[nodiscard]] std::optional<MemoryStatus> QueryMemoryStatus() noexcept;

// The directory of a memory group, as NUL-terminated text.
using GroupDirectory = std::array<char, 1024>;

// Like QueryMemoryStatus, and writes the directory of the memory group that decides. The directory
// is empty if the query fails or MemoryStatus::limit is not kMemoryGroup.
[[nodiscard]] std::optional<MemoryStatus> QueryMemoryLimit(GroupDirectory& directory) noexcept;

// Returns the machine's physical RAM in bytes, by the system's cheapest call; `nullopt` if it
// fails.
[[nodiscard]] std::optional<std::uint64_t> QueryTotalPhysicalMemory() noexcept;

// The figures that a process is opened for.
enum class ProcessRights : std::uint8_t { kTimes, kMemory };

// Processor time used since the process began, in units of 100 ns. Windows reports the two parts
// apart, so the seam has both; Linux reports the sum as user time. Only the sum is comparable.
struct ProcessTimes {
  std::uint64_t kernel = 0;
  std::uint64_t user = 0;
};

// A move-only handle that refers to one process, even after that process has ended and its pid has
// been reused. Closes itself.
class Process {
 public:
  // Returns `nullopt` if there is no such process, if access is denied, or if the calling process
  // has no handle left. The id of a thread that is not a process id counts as no such process.
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

  // Returns `nullopt` if the process is gone or the query fails. Needs kTimes.
  [[nodiscard]] std::optional<ProcessTimes> Times() const noexcept;

  // Returns the resident set (working set) in bytes; `nullopt` as above. Needs kMemory.
  [[nodiscard]] std::optional<std::uint64_t> ResidentBytes() const noexcept;

 private:
  static constexpr std::intptr_t kNoHandle = -1;

  Process(int pid, std::intptr_t handle) noexcept : pid_(pid), handle_(handle) {}
  static void Close(std::intptr_t handle) noexcept;

  int pid_;
  std::intptr_t handle_;  // a file descriptor or a HANDLE
};

// Returns a clock that never goes back, in nanoseconds since a point that the system chooses.
[[nodiscard]] std::int64_t SteadyClockNanoseconds() noexcept;

// Sleeps until that clock reaches the deadline. May return early, so the caller reads the clock
// again.
void SleepUntil(std::int64_t deadline_nanoseconds) noexcept;

}  // namespace kestrel::platform

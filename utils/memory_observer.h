#pragma once

#include <kestrelcore_export.h>

namespace kestrel_utils {

/// Meters for RAM, VRAM and one process's memory, and the allocation forecast.
///
/// Every call measures afresh; no figure is cached, and all instances are equal. All figures are
/// bytes. No member throws, whatever the HIP runtime throws; on Windows only exceptions of the
/// compiler that built this library can be caught. No member allocates memory or blocks beyond its
/// query, except for what the HIP runtime does: it initialises itself at the first call in a
/// process. Members may be called from any number of threads at once. On Linux they need up to
/// 16 KiB of stack, also at the first call in a process (measured: less than 13 KiB); the VRAM
/// members need what the HIP runtime takes on top of that. Do not cancel (pthread_cancel) a thread
/// inside a member.
///
/// A library built with KESTRELCORE_HIP=lazy looks for a HIP runtime at the first call of a VRAM
/// member or a GPU survey, and remembers the one that it has found. Until then each of these calls
/// searches again, and the system's loader allocates memory for that.
///
/// Diagnostics. Where a meter, here or in utils/cpu_usage.h, reports a failure, it writes one line
/// to the buffer of std::cerr in one call and flushes that buffer. (The line about a HIP runtime
/// that counts no devices is flushed only if std::ios::unitbuf is set, as it is by default.) The
/// state and the exception mask of std::cerr and the std::cout that is tied to it stay untouched;
/// what cannot be written is lost. What a host should know:
/// - By default several threads may write to std::cerr at once. After
///   std::ios::sync_with_stdio(false), or with a buffer of the host's own, they may not: then no
///   meter may report a failure while another thread writes to std::cerr.
/// - A full pipe blocks the meter until its reader continues.
/// - A broken pipe raises SIGPIPE, which ends a process that has left its default action.
/// - The line goes wherever file descriptor 2 leads. A host that closes descriptor 2 and then opens
///   a file finds the lines in that file.
class MemoryObserver {
 public:
  /// What `getProcessUsedRAM` returns on failure: -1.
  KESTRELCORE_EXPORT static const int kRamMeterErrorCode;

  MemoryObserver() = default;
  MemoryObserver(const MemoryObserver& other) = default;
  MemoryObserver(MemoryObserver&& other) = default;
  KESTRELCORE_EXPORT MemoryObserver& operator=(const MemoryObserver& other) noexcept;
  KESTRELCORE_EXPORT MemoryObserver& operator=(MemoryObserver&& other) noexcept;
  ~MemoryObserver() = default;

  /// Returns the machine's physical RAM, whatever limit this process runs under (ullTotalPhys of
  /// GlobalMemoryStatusEx on Windows, totalram of sysinfo(2) on Linux); 0, without a report, if the
  /// query fails.
  [[nodiscard]] KESTRELCORE_EXPORT static long long getMachinePhysicalRAM() noexcept;

  /// Returns the physical RAM that this process can get without swapping (ullAvailPhys on Windows).
  /// On Linux that is MemAvailable of /proc/meminfo, or less where the memory limits of a container
  /// leave less (docs/memory-in-containers.md). Returns 0, without a report, if the query fails.
  [[nodiscard]] KESTRELCORE_EXPORT long long getAvailableRAM() const noexcept;

  /// Returns the physical RAM minus the available RAM, both from one query; 0, without a report, if
  /// the query fails.
  [[nodiscard]] KESTRELCORE_EXPORT long long getUsedRAM() const noexcept;

  /// Returns the resident memory of process `pid` (WorkingSetSize on Windows, the resident pages of
  /// `/proc/<pid>/statm` on Linux). Positive for the caller's own process. Returns -1
  /// (`kRamMeterErrorCode`) and reports it if `pid` is below 1 or the process cannot be opened; -1
  /// without a report if its memory cannot be read.
  ///
  /// On Linux a zombie holds 0 bytes, and the id of a thread is not a process. "/proc" must be
  /// mounted. To measure another process than the caller's, it must be that of the caller's process
  /// namespace: with another one the call fails, unless the caller has the same pid in both
  /// namespaces, which is not detected.
  [[nodiscard]] KESTRELCORE_EXPORT static long long getProcessUsedRAM(int pid) noexcept;

  /// Returns the total VRAM of all HIP devices: the sum of totalGlobalMem of their properties. A
  /// device whose properties cannot be read is reported and adds 0. Returns 0 and reports it if HIP
  /// fails to count its devices or counts none; 0 without a report if HIP returns a negative count.
  [[nodiscard]] KESTRELCORE_EXPORT static long long getMachinePhysicalVRAM() noexcept;

  /// Returns the free VRAM of HIP device 0 alone, even if there are several (hipMemGetInfo).
  /// Returns 0, without a report, if there are no devices or a HIP call fails. Thread effect: makes
  /// device 0 the calling thread's current HIP device.
  [[nodiscard]] KESTRELCORE_EXPORT long long getAvailableVRAM() const noexcept;

  /// Returns whether an allocation of `bytes` would fail now: true if it exceeds the available RAM
  /// by more than the system can still commit beyond it, without any margin (ullAvailPageFile on
  /// Windows; on Linux swap, as far as limits leave any). A negative size counts as the unsigned
  /// number with the same bits, which is huge. Returns false and reports it if the query fails.
  [[nodiscard]] KESTRELCORE_EXPORT bool willFailToAllocate(long long bytes) const noexcept;
};

}  // namespace kestrel_utils

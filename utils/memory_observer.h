#pragma once

#include <kestrelcore_export.h>

namespace kestrel_utils {

/// Meters for RAM, VRAM and one process's memory, and the allocation forecast.
///
/// Every call measures afresh; nothing is cached, and any instance is as good as any other. All
/// figures are bytes. No member throws, blocks beyond its platform query, or allocates memory of
/// its own (the HIP runtime may, at its first use in a process). Members may be called from any
/// number of threads at once; they need up to 16 KiB of stack. Failures are reported as one line on
/// standard error where a member says so. Do not cancel (pthread_cancel) a thread inside a member.
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

  /// The machine's physical RAM, whatever limit this process runs under. A failure of the
  /// operating system to answer is not reported; it reads as 0.
  [[nodiscard]] KESTRELCORE_EXPORT static long long getMachinePhysicalRAM() noexcept;

  /// Physical RAM that this process could have without swapping: on Linux no more than the memory
  /// limits of its container leave it (docs/memory-in-containers.md). A failure reads as 0.
  [[nodiscard]] KESTRELCORE_EXPORT long long getAvailableRAM() const noexcept;

  /// Physical less available RAM, both from one query. A failure reads as 0.
  [[nodiscard]] KESTRELCORE_EXPORT long long getUsedRAM() const noexcept;

  /// The resident memory (working set) of process `pid`; a positive number for the caller's own.
  /// Returns -1 (`kRamMeterErrorCode`) with a line on standard error when `pid` is below 1 or no
  /// such process can be opened, and -1 without one when its counters cannot be read.
  ///
  /// On Linux a zombie holds 0 bytes, and a thread's id is not a process. "/proc" must be mounted,
  /// and that of the caller's own process namespace: with another one every call fails, unless the
  /// caller has the same pid in both namespaces, which is not detected.
  [[nodiscard]] KESTRELCORE_EXPORT static long long getProcessUsedRAM(int pid) noexcept;

  /// The total VRAM of all HIP devices, from each device's properties. Returns 0 with a line on
  /// standard error when HIP cannot count its devices or has none; a device that cannot be read is
  /// reported likewise and adds nothing.
  [[nodiscard]] KESTRELCORE_EXPORT static long long getMachinePhysicalVRAM() noexcept;

  /// The free VRAM of HIP device 0 alone, also where there are several. Returns 0, silently, when
  /// there is no device or HIP does not answer. Thread effect: makes device 0 the calling thread's
  /// current HIP device.
  [[nodiscard]] KESTRELCORE_EXPORT long long getAvailableVRAM() const noexcept;

  /// Whether an allocation of `bytes` would fail now: true exactly when it exceeds the available
  /// RAM by more than the system can still commit beyond it, with no margin. A negative size is
  /// taken as the huge unsigned one. Returns false, with a line on standard error, when the
  /// operating system does not answer.
  [[nodiscard]] KESTRELCORE_EXPORT bool willFailToAllocate(long long bytes) const noexcept;
};

}  // namespace kestrel_utils

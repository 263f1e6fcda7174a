#pragma once

#include <kestrelcore_export.h>

namespace kestrel_utils {

/// Returns how busy process `pid` keeps the machine over the next `split_ms` milliseconds: the
/// processor time that it uses, in percent of all logical processors (one busy thread on eight
/// processors: 12.5; all of them busy: 100). Not clamped. Any process can be measured, the caller's
/// own included.
///
/// Blocks the calling thread for about `split_ms` milliseconds. With 0 or less it does not sleep
/// and measures over the few microseconds between its two samples.
///
/// Ask for 100 ms or more. The recorded processor time of all threads but the caller's advances in
/// steps: the kernel's ticks on Linux (4 ms at 250 Hz), by default 15.6 ms on Windows. A reading is
/// off by up to one step for each thread that runs without a pause. With one of two processors busy
/// (50 percent) and steps of 4 ms, it is between 48 and 52 over 100 ms, and between 30 and 70 over
/// 10 ms. Measured over 1 ms, 70 percent of the readings were 0 and the largest was 206; without
/// sleep, 99.9 percent were 0 and the largest was 126,498.
///
/// Returns -1.0 and reports it in one line (see "Diagnostics" in utils/memory_observer.h) if `pid`
/// is below 1, if the process cannot be opened, if one of the two samples fails, or if no
/// wall-clock time elapsed. Returns -1.0 without a line if the logical processors cannot be
/// counted: on Linux if no file descriptor is left, or only one and `pid` is not the caller's, or
/// if neither "/sys" nor "/proc/stat" can be read. A call that fails before its sleep returns at
/// once.
///
/// On Windows the figures come from GetProcessTimes and GetSystemInfo. On Linux they come from the
/// process CPU clock (clock_getcpuclockid) and the online processors; a zombie uses 0 percent; the
/// id of a thread is not a process. To measure another process than the caller's, "/proc" must be
/// mounted, and must be that of the caller's process namespace: with another one the call fails,
/// unless the caller has the same pid in both namespaces, which is not detected.
///
/// Never throws, allocates no memory, and may be called from any number of threads at once. On
/// Linux it needs up to 16 KiB of stack, also at the first call in a process (measured: less than
/// 8 KiB). Do not cancel (pthread_cancel) a thread inside it.
[[nodiscard]] KESTRELCORE_EXPORT float GetCpuUsage(int pid, int split_ms) noexcept;

}  // namespace kestrel_utils

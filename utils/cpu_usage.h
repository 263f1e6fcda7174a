#pragma once

#include <kestrelcore_export.h>

namespace kestrel_utils {

/// How busy one process keeps the machine: the processor time that process `pid` uses over the
/// next `split_ms` milliseconds, in percent of all logical processors (one busy thread on eight
/// processors: 12.5; all of them busy: 100). Not clamped.
///
/// Blocks the calling thread for about `split_ms` milliseconds; with 0 or less it does not sleep
/// and measures over the few microseconds between its two samples. Any process may be measured,
/// the caller's own included.
///
/// Returns -1.0 and writes one line to standard error when `pid` is below 1, no such process can
/// be opened, one of its two samples fails, or no wall-clock time elapsed. Returns -1.0 without a
/// line when the logical processors cannot be counted: on Linux with only one file descriptor left,
/// or without both "/sys" and /proc/stat. A failed call returns at the step that failed.
///
/// On Linux a zombie still counts as a process (it uses 0 percent), and a thread's id does not.
/// "/proc" must be mounted, and that of the caller's own process namespace: with another one every
/// call fails, unless the caller has the same pid in both namespaces, which is not detected.
///
/// Never throws, allocates nothing, and may run on any number of threads at once. Do not cancel
/// (pthread_cancel) a thread inside it.
[[nodiscard]] KESTRELCORE_EXPORT float GetCpuUsage(int pid, int split_ms) noexcept;

}  // namespace kestrel_utils

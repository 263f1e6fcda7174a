#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <ctime>
#include <string_view>

#include "platform/linux/statm.h"
#include "platform/linux/text_file.h"
#include "platform/platform.h"

namespace kestrel::platform {

// The handle is an open file of "/proc/<pid>". The descriptor refers to that one process: reads
// fail with ESRCH once the process has been reaped, even if its pid has been reused. Opening it
// checks the permissions that the "/proc" mount requires. For the memory the file is statm, which
// contains the resident set. The times come from a clock, so any file serves; the kernel opens and
// reads oom_score_adj in the least time. A security module may refuse that file and allow statm.
//
// The calling process needs none of these checks: it finds itself as /proc/self in any "/proc", and
// its clock without a handle. Most hosts measure themselves, and that takes less time.

namespace {

constexpr std::uint64_t kTimeUnitsPerSecond = 10'000'000;  // of 100 ns
constexpr std::uint64_t kNanosecondsPerTimeUnit = 100;

using ProcessPath = std::array<char, 32>;

// Without snprintf, which takes 0.15 us longer: the whole of getProcessUsedRAM takes about 6 us.
ProcessPath PathOf(int pid, std::string_view name) noexcept {
  constexpr std::string_view kProc = "/proc/";
  ProcessPath path{};
  char* end = std::copy(kProc.begin(), kProc.end(), path.data());
  end = std::to_chars(end, path.data() + path.size(), pid).ptr;
  *end++ = '/';
  std::copy(name.begin(), name.end(), end);
  return path;
}

// The id of the process's CPU clock, as clock_getcpuclockid(3) builds it; that function also asks
// the kernel whether there is such a process, which reading the clock shows as well.
clockid_t CpuClockOf(int pid) noexcept {
  constexpr unsigned kScheduler = 2;  // CPUCLOCK_SCHED, include/linux/posix-timers.h
  return static_cast<clockid_t>(~static_cast<unsigned>(pid) << 3 | kScheduler);
}

bool HasOwnThreadGroup(int pid) noexcept {
  std::array<char, 512> buffer;  // "Tgid" is the fourth line
  const auto status = ReadTextFile(PathOf(pid, "status").data(), buffer.data(), buffer.size());
  auto group = status ? FindLine(*status, "Tgid:\t") : std::nullopt;
  return group && TakeNumber(*group) == static_cast<std::uint64_t>(pid);
}

// "/proc/<id>" can be opened for the id of any thread, but only a process has a process CPU clock.
// Asking for it needs no right over the process. After an error other than ESRCH the answer is
// unknown: a filter may have refused the call.
bool IsProcess(int pid) noexcept {
  clockid_t clock{};
  const int error = clock_getcpuclockid(pid, &clock);
  return error == 0 || (error != ESRCH && HasOwnThreadGroup(pid));
}

// Returns `nullopt` and sets errno if the read fails; if the text is malformed, it sets errno to 0.
std::optional<std::uint64_t> ReadResidentPages(int statm) noexcept {
  std::array<char, 160> buffer;  // seven numbers of at most 20 digits each
  errno = 0;
  const auto text = ReadFromStart(statm, buffer.data(), buffer.size());
  return text ? ParseResidentPages(*text) : std::nullopt;
}

// Whether the process of an open file of "/proc/<pid>" has not been reaped.
bool StillExists(int file) noexcept {
  std::array<char, 16> buffer;
  return ReadFromStart(file, buffer.data(), buffer.size()).has_value();
}

// Returns 0 for a thread that has ended in the meantime; `nullopt` if it cannot be read.
std::optional<std::uint64_t> ResidentPagesOfThread(int tasks, const char* thread) noexcept {
  std::array<char, 32> path;
  std::snprintf(path.data(), path.size(), "%.20s/statm", thread);
  const FileDescriptor statm(tasks, path.data());
  const auto pages = statm.is_open() ? ReadResidentPages(statm.get()) : std::nullopt;
  const bool has_ended = !pages && (errno == ENOENT || errno == ESRCH);
  return has_ended ? std::optional<std::uint64_t>(0) : pages;
}

// Once the main thread of a process has ended, the statm of the process reads as zeros although
// its other threads share its memory: the first one with a figure above zero has the process's.
// If all are zero, it is a zombie or a kernel thread, which have no memory.
std::optional<std::uint64_t> ResidentPagesOfThreads(int pid) noexcept {
  const bool is_own = pid == getpid();
  const FileDescriptor tasks(AT_FDCWD, is_own ? "/proc/self/task" : PathOf(pid, "task").data());
  alignas(dirent64) std::array<char, 1024> entries;
  ssize_t size = 0;
  while ((size = getdents64(tasks.get(), entries.data(), entries.size())) > 0) {
    for (ssize_t offset = 0; offset < size;) {
      const auto* entry = reinterpret_cast<const dirent64*>(entries.data() + offset);
      offset += entry->d_reclen;
      if (entry->d_name[0] == '.') {
        continue;
      }
      const auto pages = ResidentPagesOfThread(tasks.get(), entry->d_name);
      if (!pages || *pages != 0) {
        return pages;
      }
    }
  }
  return size == 0 ? std::optional<std::uint64_t>(0) : std::nullopt;
}

// In a "/proc" of another process namespace the pids are not those that the system calls take. If
// this process has the same pid in both, that is not detected: only NSpid in /proc/self/status
// shows it, which would cost every call three system calls instead of one.
bool ProcIsOfThisNamespace(int own_pid) noexcept {
  std::array<char, 16> link;
  const ssize_t size = readlink("/proc/self", link.data(), link.size());
  std::string_view text(link.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
  return TakeNumber(text) == static_cast<std::uint64_t>(own_pid);
}

}  // namespace

std::optional<Process> Process::Open(int pid, ProcessRights rights) noexcept {
  const int own_pid = getpid();
  const bool is_own = pid == own_pid;
  if (is_own && rights == ProcessRights::kTimes) {
    return Process(pid, kNoHandle);
  }
  FileDescriptor file;
  if (rights == ProcessRights::kTimes) {
    file = FileDescriptor(AT_FDCWD, PathOf(pid, "oom_score_adj").data());
  }
  if (!file.is_open()) {
    file = FileDescriptor(AT_FDCWD, is_own ? "/proc/self/statm" : PathOf(pid, "statm").data());
  }
  if (!file.is_open() || !(is_own || (IsProcess(pid) && ProcIsOfThisNamespace(own_pid)))) {
    return std::nullopt;
  }
  return Process(pid, file.release());
}

void Process::Close(std::intptr_t handle) noexcept { close(static_cast<int>(handle)); }

// The process CPU clock is finer than the ticks of /proc/<pid>/stat, but it takes a pid. If the
// process still exists after the clock was read, its pid had not been reused.
std::optional<ProcessTimes> Process::Times() const noexcept {
  const bool is_own = handle_ == kNoHandle;
  const clockid_t clock = is_own ? CLOCK_PROCESS_CPUTIME_ID : CpuClockOf(pid_);
  timespec used{};
  if (clock_gettime(clock, &used) != 0 || (!is_own && !StillExists(static_cast<int>(handle_)))) {
    return std::nullopt;
  }
  return ProcessTimes{0, static_cast<std::uint64_t>(used.tv_sec) * kTimeUnitsPerSecond +
                             static_cast<std::uint64_t>(used.tv_nsec) / kNanosecondsPerTimeUnit};
}

std::optional<std::uint64_t> Process::ResidentBytes() const noexcept {
  const int statm = static_cast<int>(handle_);
  auto pages = ReadResidentPages(statm);
  if (pages && *pages == 0) {
    pages = ResidentPagesOfThreads(pid_);
    // The threads were found by pid. They belong to this process only if it still exists.
    if (!ReadResidentPages(statm)) {
      return std::nullopt;
    }
  }
  if (!pages) {
    return std::nullopt;
  }
  return *pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace kestrel::platform

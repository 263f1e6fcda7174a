#undef _FORTIFY_SOURCE  // with it the headers define some of the functions below

#include "tests/guard/recorded_machine.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <stdexcept>
#include <string_view>

namespace kestrel::tests {
namespace {

std::string root;
Place place = Place::kOutsideOfContainers;

constexpr std::size_t kPathSize = 2048;

// Returns where a file of this machine is recorded. "/proc/<pid>" is recorded as "/proc/self".
const char* Recorded(const char* path, std::array<char, kPathSize>& buffer) {
  constexpr std::string_view kProc = "/proc/";
  constexpr std::string_view kDigits = "0123456789";
  std::string_view rest = path;
  if (root.empty() || rest.substr(0, 1) != "/") {
    return path;
  }
  char* end = std::copy(root.begin(), root.end(), buffer.begin());
  const std::string_view pid =
      rest.substr(0, kProc.size()) == kProc ? rest.substr(kProc.size()) : std::string_view();
  const std::size_t digits = std::min(pid.find_first_not_of(kDigits), pid.size());
  if (digits > 0) {
    constexpr std::string_view kSelf = "/proc/self";
    end = std::copy(kSelf.begin(), kSelf.end(), end);
    rest = pid.substr(digits);
  }
  *std::copy(rest.begin(), rest.end(), end) = '\0';
  return buffer.data();
}

}  // namespace

void UseRecordedMachine(const std::string& machine_root) {
  if (machine_root.size() > kPathSize / 2) {
    throw std::invalid_argument("the path of the recorded machine is too long");
  }
  root = machine_root;
}

void SetPlace(Place new_place) { place = new_place; }

}  // namespace kestrel::tests

// The program's own definitions come before those of the C library.
extern "C" {

int openat(int directory, const char* path, int flags, ...) {
  std::array<char, kestrel::tests::kPathSize> buffer;
  const char* const recorded = kestrel::tests::Recorded(path, buffer);
  return static_cast<int>(syscall(SYS_openat, directory, recorded, flags, 0));
}

int open(const char* path, int flags, ...) { return openat(AT_FDCWD, path, flags); }

// The link to the cgroup namespace is that of the machine's first one, or of a container's.
ssize_t readlink(const char* path, char* buffer, std::size_t size) noexcept {
  const ssize_t length = syscall(SYS_readlink, path, buffer, size);
  std::string_view link;
  if (std::string_view(path) == "/proc/self") {
    link = "12345";
  } else if (std::string_view(path) == "/proc/thread-self/ns/cgroup") {
    const bool is_first = kestrel::tests::place == kestrel::tests::Place::kOutsideOfContainers;
    link = is_first ? "cgroup:[4026531835]" : "cgroup:[4026532281]";
  }
  return link.empty() ? length : static_cast<ssize_t>(link.copy(buffer, size));
}

pid_t getpid() noexcept {
  syscall(SYS_getpid);
  return kestrel::tests::kOwnPid;
}

// The directory of the recorded groups is the top of the hierarchy.
int fstatfs(int file, struct statfs* status) noexcept {
  const long result = syscall(SYS_fstatfs, file, status);
  status->f_type = CGROUP2_SUPER_MAGIC;
  return static_cast<int>(result);
}

int fstat(int file, struct stat* status) noexcept {
  const long result = syscall(SYS_fstat, file, status);
  status->st_ino = 1;
  return static_cast<int>(result);
}

int clock_getcpuclockid(pid_t /*pid*/, clockid_t* clock) noexcept {
  *clock = CLOCK_PROCESS_CPUTIME_ID;
  return static_cast<int>(syscall(SYS_clock_getres, *clock, nullptr));
}

int clock_gettime(clockid_t clock, timespec* time) noexcept {
  static long now = 0;
  if (clock != CLOCK_MONOTONIC) {  // that of a process
    return static_cast<int>(syscall(SYS_clock_gettime, CLOCK_PROCESS_CPUTIME_ID, time));
  }
  now += 1000;
  *time = {0, now};
  return 0;
}

}  // extern "C"

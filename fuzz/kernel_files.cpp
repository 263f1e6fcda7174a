#undef _FORTIFY_SOURCE  // with it the headers define some of the functions below

#include "fuzz/kernel_files.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <ctime>
#include <utility>

#include "fuzz/property.h"

namespace {

thread_local const kestrel::fuzz::KernelFiles* made_up = nullptr;

bool IsOfKernel(const std::string& path) {
  return path.rfind("/proc/", 0) == 0 || path.rfind("/sys/", 0) == 0;
}

}  // namespace

namespace kestrel::fuzz {

KernelFiles::KernelFiles(std::string directory) : root(std::move(directory)) { made_up = this; }

KernelFiles::~KernelFiles() { made_up = nullptr; }

}  // namespace kestrel::fuzz

// Instead of those of the C library.

extern "C" int openat(int directory, const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const int mode = (flags & O_CREAT) != 0 ? va_arg(arguments, int) : 0;
  va_end(arguments);
  const bool is_made_up = made_up != nullptr && IsOfKernel(path);
  const std::string real = is_made_up ? made_up->root + path : path;
  return static_cast<int>(syscall(SYS_openat, directory, real.c_str(), flags, mode));
}

extern "C" ssize_t readlink(const char* path, char* buffer, std::size_t size) noexcept {
  if (made_up == nullptr || std::string("/proc/self") != path) {
    return static_cast<ssize_t>(syscall(SYS_readlink, path, buffer, size));
  }
  const std::size_t length = std::min(size, made_up->self.size());
  std::copy_n(made_up->self.begin(), length, buffer);
  return static_cast<ssize_t>(length);
}

extern "C" int clock_getcpuclockid(pid_t /*pid*/, clockid_t* clock) noexcept {
  *clock = CLOCK_PROCESS_CPUTIME_ID;
  return made_up != nullptr ? made_up->clock_error : 0;
}

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
  const bool is_of_process = made_up != nullptr && clock < 0;
  return static_cast<int>(
      syscall(SYS_clock_gettime, is_of_process ? CLOCK_PROCESS_CPUTIME_ID : clock, time));
}

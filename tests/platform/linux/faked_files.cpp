#include "tests/platform/linux/faked_files.h"

// Without <fcntl.h> and <unistd.h>: their functions are inline where the C library checks
// arguments, and could then not be defined here.
#include <linux/fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/vfs.h>

#include <cstdarg>
#include <string_view>

extern "C" long syscall(long number, ...) noexcept;

namespace kestrel::tests {

FilesFake& FakedFiles() {
  static FilesFake& fake = *new FilesFake;  // files are also opened in static destructors
  return fake;
}

namespace {

bool IsFaked() { return !FakedFiles().root.empty(); }

int Open(int directory, const char* path, int flags, mode_t mode) {
  const bool faked = path[0] == '/' && IsFaked();
  const std::string below = FakedFiles().root + path;
  return static_cast<int>(
      syscall(SYS_openat, directory, faked ? below.c_str() : path, flags, mode));
}

}  // namespace

}  // namespace kestrel::tests

using kestrel::tests::FakedFiles;
using kestrel::tests::IsFaked;
using kestrel::tests::Open;

// The program's own definitions come before those of the C library.
extern "C" {

int open(const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return Open(AT_FDCWD, path, flags, mode);
}

int openat(int directory, const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return Open(directory, path, flags, mode);
}

ssize_t readlink(const char* path, char* buffer, std::size_t size) noexcept {
  if (!IsFaked()) {
    return syscall(SYS_readlink, path, buffer, size);
  }
  const std::size_t count = FakedFiles().link_target.copy(buffer, size);
  const bool exists = path == std::string_view("/proc/thread-self/ns/cgroup");
  return exists && !FakedFiles().readlink_fails ? static_cast<ssize_t>(count) : -1;
}

int fstat(int file, struct stat* status) noexcept {
  const auto result = static_cast<int>(syscall(SYS_fstat, file, status));
  if (!IsFaked()) {
    return result;
  }
  status->st_ino = FakedFiles().inode;
  return FakedFiles().fstat_fails ? -1 : 0;
}

int fstatfs(int file, struct statfs* status) noexcept {
  const auto result = static_cast<int>(syscall(SYS_fstatfs, file, status));
  if (!IsFaked()) {
    return result;
  }
  status->f_type = FakedFiles().file_system;
  return FakedFiles().fstatfs_fails ? -1 : 0;
}

}  // extern "C"

#include "tests/platform/linux/interrupted_open.h"

// Without <fcntl.h>: its functions are inline where the C library checks arguments, and could then
// not be defined here.
#include <linux/fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace kestrel::tests {

namespace {

int interruptions_left = 0;

}  // namespace

void InterruptOpens(int count) { interruptions_left = count; }

}  // namespace kestrel::tests

// The program's own definitions come before those of the C library.
extern "C" {

int openat(int directory, const char* path, int flags, ...) {
  if (kestrel::tests::interruptions_left > 0) {
    --kestrel::tests::interruptions_left;
    errno = EINTR;
    return -1;
  }
  return static_cast<int>(syscall(SYS_openat, directory, path, flags, 0));
}

int open(const char* path, int flags, ...) { return openat(AT_FDCWD, path, flags); }

}  // extern "C"

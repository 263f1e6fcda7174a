#include "tests/platform/linux/faked_reads.h"

// Without <unistd.h>: its functions are inline where the C library checks arguments, and could then
// not be defined here.
#include <sys/syscall.h>
#include <sys/types.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

extern "C" long syscall(long number, ...) noexcept;

namespace kestrel::tests {

ReadsFake& FakedReads() {
  static ReadsFake& fake = *new ReadsFake;  // files are also read in static destructors
  return fake;
}

namespace {

// Returns whether this call fails.
bool Fails() {
  ReadsFake& fake = FakedReads();
  ++fake.calls;
  if (fake.errors.empty()) {
    return false;
  }
  const int error = fake.errors.front();
  fake.errors.erase(fake.errors.begin());
  if (error != 0) {
    errno = error;
  }
  return error != 0;
}

std::size_t Shortened(std::size_t size) {
  const std::size_t most = FakedReads().most;
  return most == 0 ? size : std::min(size, most);
}

}  // namespace

}  // namespace kestrel::tests

using kestrel::tests::Fails;
using kestrel::tests::Shortened;

// The program's own definitions come before those of the C library.
extern "C" {

ssize_t read(int file, void* buffer, std::size_t size) {
  return Fails() ? -1 : syscall(SYS_read, file, buffer, Shortened(size));
}

ssize_t pread(int file, void* buffer, std::size_t size, off_t offset) {
  return Fails() ? -1 : syscall(SYS_pread64, file, buffer, Shortened(size), offset);
}

}  // extern "C"

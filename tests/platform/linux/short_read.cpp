#include "tests/platform/linux/short_read.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>

namespace kestrel::tests {

namespace {

std::size_t longest = 0;

}  // namespace

void ShortenReads(std::size_t size) { longest = size; }

}  // namespace kestrel::tests

// The program's own definition comes before that of the C library.
extern "C" ssize_t pread(int file, void* buffer, std::size_t size, off_t offset) {
  const std::size_t most = kestrel::tests::longest;
  return syscall(SYS_pread64, file, buffer, most == 0 ? size : std::min(size, most), offset);
}

// A library to preload (LD_PRELOAD) that lets every read of the program return at most
// ATTACK_SHORT_READS bytes, as a file system may do at any time. It counts those that it cut in the
// file that ATTACK_SHORT_READS_COUNT names, which the processes share.

#undef _FORTIFY_SOURCE  // with it the headers define some of the functions below

#include <dirent.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>

namespace {

using Counter = std::atomic<long>;

// Ends the program where there is no counter: what was not counted must not pass.
Counter& SharedCounter() {
  const char* const path = std::getenv("ATTACK_SHORT_READS_COUNT");
  const int file = path != nullptr ? open(path, O_RDWR | O_CLOEXEC) : -1;
  void* const memory = mmap(nullptr, sizeof(Counter), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (memory == MAP_FAILED) {
    std::abort();
  }
  close(file);
  return *static_cast<Counter*>(memory);
}

Counter& Cut() {
  static Counter& counter = SharedCounter();
  return counter;
}

std::size_t Limit() {
  static const char* const text = std::getenv("ATTACK_SHORT_READS");
  return text != nullptr ? static_cast<std::size_t>(std::atol(text)) : SIZE_MAX;
}

std::size_t Short(std::size_t size) {
  const std::size_t limit = std::max<std::size_t>(Limit(), 1);
  Cut() += size > limit ? 1 : 0;
  return std::min(size, limit);
}

ssize_t Read(int file, void* buffer, std::size_t size) {
  return syscall(SYS_read, file, buffer, Short(size));
}

ssize_t ReadAt(int file, void* buffer, std::size_t size, off_t offset) {
  return syscall(SYS_pread64, file, buffer, Short(size), offset);
}

}  // namespace

extern "C" {

ssize_t read(int file, void* buffer, std::size_t size) { return Read(file, buffer, size); }

ssize_t pread(int file, void* buffer, std::size_t size, off_t offset) {
  return ReadAt(file, buffer, size, offset);
}

ssize_t pread64(int file, void* buffer, std::size_t size, off64_t offset) {
  return ReadAt(file, buffer, size, offset);
}

// What _FORTIFY_SOURCE makes of them.
ssize_t __read_chk(int file, void* buffer, std::size_t size, std::size_t /*room*/) {
  return Read(file, buffer, size);
}

ssize_t __pread_chk(int file, void* buffer, std::size_t size, off_t offset, std::size_t /*room*/) {
  return ReadAt(file, buffer, size, offset);
}

ssize_t __pread64_chk(int file, void* buffer, std::size_t size, off64_t offset,
                      std::size_t /*room*/) {
  return ReadAt(file, buffer, size, offset);
}

// Room for one entry of up to 28 letters: the kernel returns whole entries or fails.
ssize_t getdents64(int directory, void* buffer, std::size_t size) {
  ++Cut();
  return syscall(SYS_getdents64, directory, buffer, std::min<std::size_t>(size, 48));
}

}  // extern "C"

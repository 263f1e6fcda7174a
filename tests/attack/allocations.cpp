#include "tests/attack/allocations.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

extern "C" {
// The names under which glibc's allocator remains available.
void* __libc_malloc(std::size_t size);                           // NOLINT
void* __libc_calloc(std::size_t count, std::size_t size);        // NOLINT
void* __libc_realloc(void* memory, std::size_t size);            // NOLINT
void* __libc_memalign(std::size_t alignment, std::size_t size);  // NOLINT
}

namespace kestrel::tests {

namespace {

// A runtime may allocate in threads of its own.
std::atomic<bool> armed = false;
std::atomic<long> count = 0;
AllocationFaults the_faults;

bool Fails() {
  if (!armed) {
    return false;
  }
  const long number = count++;
  const bool fails = the_faults.first >= 0 && (number == the_faults.first ||
                                               (the_faults.all_later && number > the_faults.first));
  if (fails) {
    errno = ENOMEM;
  }
  return fails;
}

}  // namespace

void ArmAllocations(AllocationFaults faults) {
  the_faults = faults;
  count = 0;
  armed = true;
}

long DisarmAllocations() {
  armed = false;
  return count;
}

}  // namespace kestrel::tests

using kestrel::tests::Fails;

extern "C" {

void* malloc(std::size_t size) { return Fails() ? nullptr : __libc_malloc(size); }

void* calloc(std::size_t number, std::size_t size) {
  return Fails() ? nullptr : __libc_calloc(number, size);
}

void* realloc(void* memory, std::size_t size) {
  return Fails() ? nullptr : __libc_realloc(memory, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
  return Fails() ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  void* const block = memalign(alignment, size);
  if (block == nullptr) {
    return ENOMEM;
  }
  *memory = block;
  return 0;
}

}  // extern "C"

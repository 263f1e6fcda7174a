#include "tests/platform/linux/forecast_threshold.h"

#include <sys/mman.h>
#include <utils/memory_observer.h>

#include <cstring>
#include <random>

namespace kestrel::tests {

namespace {

constexpr std::uint64_t kPageSize = 4096;

}  // namespace

std::uint64_t FindThreshold() {
  const kestrel_utils::MemoryObserver observer;
  long long lives = 0;
  long long fails = 1LL << 50;
  while (fails - lives > static_cast<long long>(kPageSize)) {
    const long long middle = lives + (fails - lives) / 2;
    (observer.willFailToAllocate(middle) ? fails : lives) = middle;
  }
  return static_cast<std::uint64_t>(fails);
}

bool AllocateAndUse(std::uint64_t bytes, std::uint64_t random_percent) {
  void* const mapping =
      mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapping == MAP_FAILED) {
    return false;
  }
  auto* const memory = static_cast<char*>(mapping);
  std::mt19937_64 generator;
  for (std::uint64_t offset = 0; offset < bytes; offset += kPageSize) {
    static_cast<volatile char*>(memory)[offset] = 1;
    const std::uint64_t random_end = offset + kPageSize / 100 * random_percent;
    for (std::uint64_t place = offset; place + sizeof(std::uint64_t) <= random_end;
         place += sizeof(std::uint64_t)) {
      const std::uint64_t number = generator();
      std::memcpy(memory + place, &number, sizeof(number));
    }
  }
  return true;
}

}  // namespace kestrel::tests

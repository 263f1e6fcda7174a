#include <statgrab.h>

#include <cstddef>

#include "bench/comparison.h"

namespace kestrel::bench {

namespace {

const sg_mem_stats& Memory() {
  static const sg_error error = sg_init(1);
  static_cast<void>(error);
  std::size_t entries = 0;
  return *sg_get_mem_stats(&entries);
}

unsigned long long FreeMemory() {
  const sg_mem_stats& memory = Memory();
  return memory.free + memory.cache;
}

const bool added[] = {
    Compare("getMachinePhysicalRAM", "libstatgrab", [] { return Memory().total; }),
    Compare("getAvailableRAM", "libstatgrab", FreeMemory),
    Compare("willFailToAllocate", "libstatgrab", [] { return FreeMemory() < 1 << 20; }),
};

}  // namespace

}  // namespace kestrel::bench

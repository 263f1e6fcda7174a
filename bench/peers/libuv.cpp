#include <uv.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "bench/comparison.h"

namespace kestrel::bench {

namespace {

// Since libuv 1.45 one call, uv_get_available_memory, returns what the process can get.
std::uint64_t AvailableMemory() {
#if UV_VERSION_HEX >= 0x012D00
  return uv_get_available_memory();
#else
  const std::uint64_t limit = uv_get_constrained_memory();  // 0 if unknown
  const std::uint64_t free = uv_get_free_memory();          // MemAvailable
  return limit != 0 ? std::min(limit, free) : free;
#endif
}

// Of the calling process alone.
std::size_t ResidentMemory() {
  std::size_t bytes = 0;
  uv_resident_set_memory(&bytes);
  return bytes;
}

const bool added[] = {
    Compare("getMachinePhysicalRAM", "libuv", uv_get_total_memory),
    Compare("getAvailableRAM", "libuv", AvailableMemory),
    Compare("willFailToAllocate", "libuv", [] { return AvailableMemory() < 1 << 20; }),
    Compare("getProcessUsedRAM, own process", "libuv", ResidentMemory),
};

}  // namespace

}  // namespace kestrel::bench

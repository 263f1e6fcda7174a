#include <hwloc.h>

#include <cstdint>

#include "bench/comparison.h"

namespace kestrel::bench {

namespace {

// It has to look at the whole machine before it returns any figure.
std::uint64_t TotalMemory() {
  hwloc_topology_t topology{};
  hwloc_topology_init(&topology);
  hwloc_topology_load(topology);
  const std::uint64_t bytes = hwloc_get_root_obj(topology)->total_memory;
  hwloc_topology_destroy(topology);
  return bytes;
}

const bool added[] = {
    Compare("SurveyCpu", "hwloc", TotalMemory),
    Compare("getMachinePhysicalRAM", "hwloc", TotalMemory),
};

}  // namespace

}  // namespace kestrel::bench

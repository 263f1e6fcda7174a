#include <libproc2/meminfo.h>
#include <libproc2/pids.h>

#include "bench/comparison.h"

namespace kestrel::bench {

namespace {

// procps_meminfo_get would read the file only once in a second.
template <meminfo_item kItem>
unsigned long Kibibytes() {
  static meminfo_info* const info = [] {
    meminfo_info* created = nullptr;
    procps_meminfo_new(&created);
    return created;
  }();
  meminfo_item item = kItem;
  const meminfo_stack* const stack = procps_meminfo_select(info, &item, 1);
  return stack != nullptr ? stack->head[0].result.ul_int : 0;
}

template <pids_item kItem>
unsigned long long OfProcess(int process) {
  static pids_info* const info = [] {
    pids_info* created = nullptr;
    pids_item item = kItem;
    procps_pids_new(&created, &item, 1);
    return created;
  }();
  auto id = static_cast<unsigned>(process);
  const pids_fetch* const found = procps_pids_select(info, &id, 1, PIDS_SELECT_PID);
  return found != nullptr ? found->stacks[0]->head[0].result.ull_int : 0;
}

bool WillFail() { return Kibibytes<MEMINFO_MEM_AVAILABLE>() < 1 << 10; }

unsigned long long TicksTwice(int process) {
  const auto first = OfProcess<PIDS_TICS_ALL>(process);
  return OfProcess<PIDS_TICS_ALL>(process) - first;
}

const bool added[] = {
    Compare("getMachinePhysicalRAM", "libproc2", Kibibytes<MEMINFO_MEM_TOTAL>),
    Compare("getAvailableRAM", "libproc2", Kibibytes<MEMINFO_MEM_AVAILABLE>),
    Compare("willFailToAllocate", "libproc2", WillFail),
    ComparePerProcess("getProcessUsedRAM", "libproc2", OfProcess<PIDS_MEM_RES>),
    ComparePerProcess("GetCpuUsage", "libproc2", TicksTwice),
};

}  // namespace

}  // namespace kestrel::bench

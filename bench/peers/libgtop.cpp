#include <glibtop.h>
#include <glibtop/mem.h>
#include <glibtop/procmem.h>
#include <glibtop/proctime.h>

#include "bench/comparison.h"

namespace kestrel::bench {

namespace {

glibtop_mem Memory() {
  glibtop_mem memory{};
  glibtop_get_mem(&memory);
  return memory;
}

// It has no figure of what is available.
guint64 FreeMemory() {
  const glibtop_mem memory = Memory();
  return memory.free + memory.buffer + memory.cached;
}

guint64 ResidentMemory(int process) {
  glibtop_proc_mem memory{};
  glibtop_get_proc_mem(&memory, process);
  return memory.resident;
}

guint64 Time(int process) {
  glibtop_proc_time time{};
  glibtop_get_proc_time(&time, process);
  return time.rtime;
}

guint64 TimeTwice(int process) {
  const guint64 first = Time(process);
  return Time(process) - first;
}

const bool added[] = {
    Compare("getMachinePhysicalRAM", "libgtop", [] { return Memory().total; }),
    Compare("getAvailableRAM", "libgtop", FreeMemory),
    Compare("willFailToAllocate", "libgtop", [] { return FreeMemory() < 1 << 20; }),
    ComparePerProcess("getProcessUsedRAM", "libgtop", ResidentMemory),
    ComparePerProcess("GetCpuUsage", "libgtop", TimeTwice),
};

}  // namespace

}  // namespace kestrel::bench

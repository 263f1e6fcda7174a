#include <sys/syscall.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "bench/bare_read.h"
#include "bench/comparison.h"
#include "bench/trace.h"
#include "utils/memory_observer.h"

namespace kestrel::bench {

namespace {

using kestrel_utils::MemoryObserver;

long long AvailableRam() { return MemoryObserver().getAvailableRAM(); }

bool WillFail() { return MemoryObserver().willFailToAllocate(1 << 20); }

unsigned long TotalOfSysinfo() {
  struct sysinfo info {};
  sysinfo(&info);
  return info.totalram;
}

// Which files hold the answer depends on the machine's memory groups. The list comes from tracing
// the call itself; the limit reads as much of each, by its full name.
template <auto call>
std::size_t ReadFilesOf() {
  static const auto files = TraceCall([] { benchmark::DoNotOptimize(call()); }, true).files;
  return ReadBare(files);
}

template <int (*kProcess)()>
std::size_t ReadStatm() {
  static const std::vector<FileToRead> statm = {
      {"/proc/" + std::to_string(kProcess()) + "/statm", 1}};
  return ReadBare(statm);
}

// Signal 0 checks that the id is that of a process, not of another thread.
std::size_t ReadOtherStatm() {
  syscall(SYS_tgkill, OtherProcess(), OtherProcess(), 0);
  return ReadStatm<OtherProcess>();
}

const bool added[] = {
    Compare("getMachinePhysicalRAM", "kestrelcore", MemoryObserver::getMachinePhysicalRAM),
    Compare("getMachinePhysicalRAM", "limit", TotalOfSysinfo),
    Compare("getAvailableRAM", "kestrelcore", AvailableRam),
    Compare("getAvailableRAM", "limit", ReadFilesOf<AvailableRam>),
    Compare("willFailToAllocate", "kestrelcore", WillFail),
    Compare("willFailToAllocate", "limit", ReadFilesOf<WillFail>),
    ComparePerProcess("getProcessUsedRAM", "kestrelcore", MemoryObserver::getProcessUsedRAM),
    Compare("getProcessUsedRAM, own process", "limit", ReadStatm<OwnProcess>),
    Compare("getProcessUsedRAM, another process", "limit", ReadOtherStatm),
};

}  // namespace

}  // namespace kestrel::bench

#include <sys/sysinfo.h>

#include "platform/linux/memory_status.h"
#include "platform/platform.h"

namespace kestrel::platform {

std::optional<MemoryStatus> QueryMemoryStatus() noexcept { return ReadMemoryStatus(""); }

std::optional<std::uint64_t> QueryTotalPhysicalMemory() noexcept {
  struct sysinfo info {};
  if (sysinfo(&info) != 0) {
    return std::nullopt;
  }
  return std::uint64_t{info.totalram} * info.mem_unit;
}

}  // namespace kestrel::platform

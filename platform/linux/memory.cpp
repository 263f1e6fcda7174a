#include <sys/sysinfo.h>

#include "platform/linux/memory_status.h"
#include "platform/platform.h"

namespace kestrel::platform {

std::optional<MemoryStatus> QueryMemoryStatus() noexcept { return ReadMemoryStatus(""); }

std::optional<MemoryStatus> QueryMemoryLimit(GroupDirectory& directory) noexcept {
  PathBuffer group;
  const auto status = ReadMemoryStatus("", &group);
  directory[group.view().copy(directory.data(), directory.size() - 1)] = '\0';
  return status;
}

std::optional<std::uint64_t> QueryTotalPhysicalMemory() noexcept {
  struct sysinfo info {};
  if (sysinfo(&info) != 0) {
    return std::nullopt;
  }
  return std::uint64_t{info.totalram} * info.mem_unit;
}

}  // namespace kestrel::platform

#include <sys/sysinfo.h>

#include <array>

#include "platform/linux/memory_policy.h"
#include "platform/linux/text_file.h"
#include "platform/platform.h"

namespace kestrel::platform {

namespace {

bool ReadStrictOvercommit() noexcept {
  std::array<char, 16> buffer;
  const auto text = ReadTextFile("/proc/sys/vm/overcommit_memory", buffer.data(), buffer.size());
  return text && IsStrictOvercommit(*text);
}

}  // namespace

std::optional<MemoryStatus> QueryMemoryStatus() noexcept {
  std::array<char, 8192> buffer;  // five times what a kernel of 2024 writes
  const auto text = ReadTextFile("/proc/meminfo", buffer.data(), buffer.size());
  const auto meminfo = text ? ParseMeminfo(*text) : std::nullopt;
  if (!meminfo) {
    return std::nullopt;
  }
  return ToMemoryStatus(*meminfo, ReadStrictOvercommit());
}

std::optional<std::uint64_t> QueryTotalPhysicalMemory() noexcept {
  struct sysinfo info {};
  if (sysinfo(&info) != 0) {
    return std::nullopt;
  }
  return std::uint64_t{info.totalram} * info.mem_unit;
}

}  // namespace kestrel::platform

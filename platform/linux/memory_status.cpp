#include "platform/linux/memory_status.h"

#include <array>

#include "platform/linux/cgroup_memory.h"
#include "platform/linux/memory_policy.h"
#include "platform/linux/path_buffer.h"
#include "platform/linux/text_file.h"

namespace kestrel::platform {

namespace {

std::optional<std::string_view> ReadBelow(std::string_view root, std::string_view path,
                                          char* buffer, std::size_t size) noexcept {
  PathBuffer whole;
  return whole.Append(root) && whole.Append(path) ? ReadTextFile(whole.c_str(), buffer, size)
                                                  : std::nullopt;
}

std::optional<Meminfo> ReadMeminfo(std::string_view root) noexcept {
  std::array<char, 4096> buffer;  // Linux 6.12 writes 1.5 KiB
  const auto text = ReadBelow(root, "/proc/meminfo", buffer.data(), buffer.size());
  return text ? ParseMeminfo(*text) : std::nullopt;
}

bool ReadStrictOvercommit(std::string_view root) noexcept {
  std::array<char, 16> buffer;
  const auto text = ReadBelow(root, "/proc/sys/vm/overcommit_memory", buffer.data(), buffer.size());
  return text && IsStrictOvercommit(*text);
}

}  // namespace

std::optional<MemoryStatus> ReadMemoryStatus(std::string_view root) noexcept {
  const auto meminfo = ReadMeminfo(root);
  if (!meminfo) {
    return std::nullopt;
  }
  return ToMemoryStatus(*meminfo, ReadStrictOvercommit(root),
                        ReadCgroupRoom(root, meminfo->swap_free > 0));
}

}  // namespace kestrel::platform

#include "platform/linux/memory_status.h"

#include <array>

#include "platform/linux/cgroup_memory.h"
#include "platform/linux/memory_policy.h"
#include "platform/linux/optional_file.h"

namespace kestrel::platform {

namespace {

std::optional<Meminfo> ReadMeminfo(std::string_view root) noexcept {
  std::array<char, 4096> buffer;  // Linux 6.12 writes 1.5 KiB
  bool failed = false;            // without this file there is no answer, whatever the reason
  const auto text = ReadOptionalFile(root, "/proc/meminfo", buffer.data(), buffer.size(), failed);
  return text ? ParseMeminfo(*text) : std::nullopt;
}

bool ReadStrictOvercommit(std::string_view root, bool& failed) noexcept {
  std::array<char, 16> buffer;
  const auto text = ReadOptionalFile(root, "/proc/sys/vm/overcommit_memory", buffer.data(),
                                     buffer.size(), failed);
  return text && IsStrictOvercommit(*text);
}

}  // namespace

std::optional<MemoryStatus> ReadMemoryStatus(std::string_view root, PathBuffer* group) noexcept {
  const auto meminfo = ReadMeminfo(root);
  const auto room = meminfo ? ReadCgroupRoom(root, meminfo->swap_free > 0, group) : std::nullopt;
  bool failed = !room;
  const bool strict = !failed && ReadStrictOvercommit(root, failed);
  const auto status =
      failed ? std::nullopt : std::optional(ToMemoryStatus(*meminfo, strict, *room));
  if (group != nullptr && (!status || status->limit != MemoryLimit::kMemoryGroup)) {
    group->Truncate(0);
  }
  return status;
}

}  // namespace kestrel::platform

#include "platform/linux/memory_status.h"

#include <array>

#include "platform/linux/cgroup_memory.h"
#include "platform/linux/commit_reserve.h"
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

void ReadOvercommit(std::string_view root, MemorySettings& settings, bool& failed) noexcept {
  constexpr std::uint64_t kNever = 2;  // OVERCOMMIT_NEVER, proc_sys_vm(5)
  const auto mode = ReadOptionalNumber(root, "/proc/sys/vm/overcommit_memory", failed);
  settings.strict_overcommit = mode == kNever;
  if (settings.strict_overcommit) {
    settings.commit_reserve = ReadCommitReserve(root, failed);
  }
}

bool IsZswapEnabled(std::string_view root, bool& failed) noexcept {
  std::array<char, 4> buffer;
  const auto text = ReadOptionalFile(root, "/sys/module/zswap/parameters/enabled", buffer.data(),
                                     buffer.size(), failed);
  return text == "Y\n";
}

// With swappiness 0 processes are killed although swap is free. For a group at its limit the kernel
// swaps nothing then. When the machine itself is out of RAM, the multi-generational LRU swaps
// nothing either, and the classic LRU starts too late: with 128 MiB of free swap, Linux 6.1
// and 6.12 killed processes after 2 to 9 MiB.
//
// Pages that zswap may not write back stay in its pool, which is in RAM and counts against the
// group's limit. Without zswap they go to the swap device whatever the groups say.
bool ReadSwaps(std::string_view root, const CgroupRoom& room, bool& failed) noexcept {
  const auto swappiness = room.swappiness
                              ? room.swappiness
                              : ReadOptionalNumber(root, "/proc/sys/vm/swappiness", failed);
  return swappiness != 0U && (room.zswap_writeback || !IsZswapEnabled(root, failed));
}

}  // namespace

std::optional<MemoryStatus> ReadMemoryStatus(std::string_view root, PathBuffer* group) noexcept {
  std::optional<MemoryStatus> status;
  const auto meminfo = ReadMeminfo(root);
  const bool with_swap = meminfo && meminfo->swap_free > 0;
  const auto room = meminfo ? ReadCgroupRoom(root, with_swap, group) : std::nullopt;
  if (room) {
    bool failed = false;
    MemorySettings settings;
    ReadOvercommit(root, settings, failed);
    settings.swaps = with_swap && ReadSwaps(root, *room, failed);
    status = failed ? std::nullopt : std::optional(ToMemoryStatus(*meminfo, settings, *room));
  }
  if (group != nullptr && (!status || status->limit != MemoryLimit::kMemoryGroup)) {
    group->Truncate(0);
  }
  return status;
}

}  // namespace kestrel::platform

#include "platform/linux/memory_policy.h"

#include <algorithm>
#include <limits>

namespace kestrel::platform {

namespace {

// More than the limit may be committed, if the limit was lowered afterwards.
std::uint64_t CommitLeft(const Meminfo& meminfo, const MemorySettings& settings) noexcept {
  if (!settings.strict_overcommit) {
    return std::numeric_limits<std::uint64_t>::max();
  }
  const std::uint64_t usable =
      meminfo.commit_limit - std::min(settings.commit_reserve, meminfo.commit_limit);
  return usable - std::min(meminfo.committed, usable);
}

}  // namespace

// The kernel could also swap out the memory of other groups and so leave this one more RAM. It is
// not counted: how much of theirs can be swapped is not known, and a process that relies on it
// risks being killed.
MemoryStatus ToMemoryStatus(const Meminfo& meminfo, const MemorySettings& settings,
                            const CgroupRoom& room) noexcept {
  const std::uint64_t commit_left = CommitLeft(meminfo, settings);
  const std::uint64_t available = std::min({meminfo.available, room.Memory(), commit_left});
  const std::uint64_t beyond =
      settings.swaps ? std::min({meminfo.swap_free, room.swap, room.memory_and_swap - available,
                                 commit_left - available})
                     : 0;
  MemoryLimit limit = MemoryLimit::kCommitLimit;
  if (available == meminfo.available) {
    limit = MemoryLimit::kMachine;
  } else if (available == room.Memory()) {
    limit = MemoryLimit::kMemoryGroup;
  }
  return {meminfo.total, available, beyond, limit};
}

}  // namespace kestrel::platform

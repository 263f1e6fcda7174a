#include "platform/linux/memory_policy.h"

#include <algorithm>

namespace kestrel::platform {

bool IsStrictOvercommit(std::string_view overcommit_memory) noexcept {
  return overcommit_memory.substr(0, overcommit_memory.find('\n')) == "2";
}

// Swap that a group may not use could still be filled with other groups' memory, to leave this one
// more RAM. How much of theirs can be swapped is not known, and who counts on it in vain is killed:
// it is left out.
MemoryStatus ToMemoryStatus(const Meminfo& meminfo, bool strict_overcommit,
                            const CgroupRoom& room) noexcept {
  std::uint64_t available = std::min({meminfo.available, room.physical, room.together});
  std::uint64_t beyond = meminfo.swap_free;
  if (strict_overcommit) {
    // More may be committed than the limit if that was lowered since.
    const std::uint64_t commit_left =
        meminfo.commit_limit - std::min(meminfo.committed, meminfo.commit_limit);
    available = std::min(available, commit_left);
    beyond = commit_left - available;
  }
  if (room.physical < meminfo.available) {
    // The commit limit is a promise of the machine; a group that is full has at best swap.
    beyond = room.swaps_when_full ? std::min(beyond, meminfo.swap_free) : 0;
  }
  return {meminfo.total, available, std::min({beyond, room.swap, room.together - available})};
}

}  // namespace kestrel::platform

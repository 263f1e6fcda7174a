#include "platform/linux/memory_policy.h"

#include <algorithm>

namespace kestrel::platform {

bool IsStrictOvercommit(std::string_view overcommit_memory) noexcept {
  return overcommit_memory.substr(0, overcommit_memory.find('\n')) == "2";
}

// The kernel could also swap out the memory of other groups and so leave this one more RAM. It is
// not counted: how much of theirs can be swapped is not known, and a process that relies on it
// risks being killed.
MemoryStatus ToMemoryStatus(const Meminfo& meminfo, bool strict_overcommit,
                            const CgroupRoom& room) noexcept {
  MemoryLimit limit =
      room.Memory() < meminfo.available ? MemoryLimit::kMemoryGroup : MemoryLimit::kMachine;
  std::uint64_t available = std::min(meminfo.available, room.Memory());
  std::uint64_t beyond = meminfo.swap_free;
  if (strict_overcommit) {
    // More than the limit may be committed, if the limit was lowered afterwards.
    const std::uint64_t commit_left =
        meminfo.commit_limit - std::min(meminfo.committed, meminfo.commit_limit);
    limit = commit_left < available ? MemoryLimit::kCommitLimit : limit;
    available = std::min(available, commit_left);
    beyond = commit_left - available;
  }
  if (room.physical < meminfo.available) {
    // The commit limit is the machine's. A group at its own limit can only swap.
    beyond = room.swaps_when_full ? std::min(beyond, meminfo.swap_free) : 0;
  }
  return {meminfo.total, available, std::min({beyond, room.swap, room.memory_and_swap - available}),
          limit};
}

}  // namespace kestrel::platform

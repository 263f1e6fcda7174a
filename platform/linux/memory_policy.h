#pragma once

#include <cstdint>

#include "platform/linux/cgroup_memory.h"
#include "platform/linux/meminfo.h"
#include "platform/platform.h"

namespace kestrel::platform {

// Settings of the kernel that decide what may be committed and what is swapped.
struct MemorySettings {
  bool strict_overcommit = false;    // whether nothing is committed above the commit limit
  std::uint64_t commit_reserve = 0;  // bytes of the commit limit that this process may not use
  bool swaps = true;                 // whether the kernel swaps out this process's memory
};

// Expresses the Linux figures in the terms of platform.h. The available RAM is the smallest of the
// machine's, the room in the process's memory groups and, under strict overcommit, the rest of the
// commit limit. What can be committed beyond it is the swap left, within the same limits: whatever
// may be committed, only swap can hold what the RAM cannot. The total is always the machine's.
[[nodiscard]] MemoryStatus ToMemoryStatus(const Meminfo& meminfo, const MemorySettings& settings,
                                          const CgroupRoom& room = {}) noexcept;

}  // namespace kestrel::platform

#pragma once

#include <cstdint>
#include <string_view>

#include "platform/linux/cgroup_memory.h"
#include "platform/linux/meminfo.h"
#include "platform/platform.h"

namespace kestrel::platform {

// Whether the kernel promises only what it can keep: vm.overcommit_memory 2 (proc_sys_vm(5)).
[[nodiscard]] bool IsStrictOvercommit(std::string_view overcommit_memory) noexcept;

// What Linux figures mean in the terms of the seam. The available RAM is the machine's or what the
// process's memory groups leave, whichever is less; beyond it there is the swap left, likewise.
// Under strict overcommit there is the rest of the commit limit instead, which also bounds the
// RAM: what cannot be committed cannot be had. The total is always the machine's.
[[nodiscard]] MemoryStatus ToMemoryStatus(const Meminfo& meminfo, bool strict_overcommit,
                                          const CgroupRoom& room = {}) noexcept;

}  // namespace kestrel::platform

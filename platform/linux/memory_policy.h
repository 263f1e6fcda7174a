#pragma once

#include <cstdint>
#include <string_view>

#include "platform/linux/cgroup_memory.h"
#include "platform/linux/meminfo.h"
#include "platform/platform.h"

namespace kestrel::platform {

// Whether the text is that of vm.overcommit_memory in mode 2 (proc_sys_vm(5)), in which the kernel
// refuses to commit more than its commit limit.
[[nodiscard]] bool IsStrictOvercommit(std::string_view overcommit_memory) noexcept;

// Expresses the Linux figures in the terms of platform.h. The available RAM is the smaller of the
// machine's and the room in the process's memory groups. What can be committed beyond it is the
// swap left, again the smaller of the two. Under strict overcommit it is the rest of the commit
// limit instead, and that rest also bounds the available RAM. The total is always the machine's.
[[nodiscard]] MemoryStatus ToMemoryStatus(const Meminfo& meminfo, bool strict_overcommit,
                                          const CgroupRoom& room = {}) noexcept;

}  // namespace kestrel::platform

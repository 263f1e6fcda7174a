#include "platform/linux/memory_policy.h"

#include <algorithm>

namespace kestrel::platform {

bool IsStrictOvercommit(std::string_view overcommit_memory) noexcept {
  return overcommit_memory.substr(0, overcommit_memory.find('\n')) == "2";
}

MemoryStatus ToMemoryStatus(const Meminfo& meminfo, bool strict_overcommit) noexcept {
  if (!strict_overcommit) {
    return {meminfo.total, meminfo.available, meminfo.swap_free};
  }
  // More may be committed than the limit if that was lowered since.
  const std::uint64_t commit_left =
      meminfo.commit_limit - std::min(meminfo.committed, meminfo.commit_limit);
  const std::uint64_t available = std::min(meminfo.available, commit_left);
  return {meminfo.total, available, commit_left - available};
}

}  // namespace kestrel::platform

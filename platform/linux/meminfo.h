#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace kestrel::platform {

// The figures of /proc/meminfo that a memory status is made of, in bytes (proc(5)).
struct Meminfo {
  std::uint64_t total = 0;                                                 // MemTotal
  std::uint64_t available = 0;                                             // MemAvailable
  std::uint64_t swap_free = 0;                                             // SwapFree
  std::uint64_t commit_limit = std::numeric_limits<std::uint64_t>::max();  // CommitLimit
  std::uint64_t committed = 0;                                             // Committed_AS
};

// Nothing unless every figure stands there as the kernel writes it ("Name: <number> kB" on a line
// of its own), fits 64 bits, and no more is available than there is. The two about commitment may
// be missing, for no limit: sandboxes that stand in for the kernel leave them out.
[[nodiscard]] std::optional<Meminfo> ParseMeminfo(std::string_view text) noexcept;

}  // namespace kestrel::platform

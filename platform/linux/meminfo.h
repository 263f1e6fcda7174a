#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace kestrel::platform {

// The figures of /proc/meminfo (proc_meminfo(5)) that the memory status needs, in bytes.
struct Meminfo {
  std::uint64_t total = 0;                                                 // MemTotal
  std::uint64_t available = 0;                                             // MemAvailable
  std::uint64_t swap_free = 0;                                             // SwapFree
  std::uint64_t commit_limit = std::numeric_limits<std::uint64_t>::max();  // CommitLimit
  std::uint64_t committed = 0;                                             // Committed_AS
};

// Parses a figure of "/proc", "<number> kB" after blanks or tabs. Returns it in bytes, or `nullopt`
// if it is malformed or exceeds 64 bits.
[[nodiscard]] std::optional<std::uint64_t> ParseKibibytes(std::string_view text) noexcept;

// Returns `nullopt` unless every figure is on a line of its own in the kernel's format
// ("Name: <number> kB") and fits in 64 bits, and MemAvailable does not exceed MemTotal. CommitLimit
// and Committed_AS may be missing, which means no limit: sandboxes that implement the kernel's
// interface in user space leave them out.
[[nodiscard]] std::optional<Meminfo> ParseMeminfo(std::string_view text) noexcept;

}  // namespace kestrel::platform

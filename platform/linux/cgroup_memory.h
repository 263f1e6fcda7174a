#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

#include "platform/linux/path_buffer.h"

namespace kestrel::platform {

// How much more the memory groups (cgroups(7)) of a process allow it, in bytes. Each figure is the
// smallest over the process's own group and all of its visible ancestors.
struct CgroupRoom {
  static constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();

  std::uint64_t physical = kUnlimited;         // RAM
  std::uint64_t swap = kUnlimited;             // swap alone; limited by version 2
  std::uint64_t memory_and_swap = kUnlimited;  // RAM and swap in one counter; limited by version 1
  std::optional<std::uint64_t> swappiness = std::nullopt;  // of the own group; version 1 only
  bool zswap_writeback = true;  // whether zswap may write pages to the swap device; version 2

  // RAM that the groups allow, by whichever of their limits is tighter.
  [[nodiscard]] std::uint64_t Memory() const noexcept {
    return std::min(physical, memory_and_swap);
  }
};

// Reads the room left now. A figure whose files are absent or hold no number counts as unlimited.
// Returns `nullopt` if a file that exists could not be read. The swap figures are read only
// `with_swap`. All files are read below `root`: "" for this machine, or a directory that holds the
// files of another.
//
// Also writes the directory of the group that leaves the least memory to `*tightest`, unless that
// is null; it is left unchanged if no group has a limit.
[[nodiscard]] std::optional<CgroupRoom> ReadCgroupRoom(std::string_view root, bool with_swap,
                                                       PathBuffer* tightest = nullptr) noexcept;

}  // namespace kestrel::platform

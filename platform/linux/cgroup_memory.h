#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace kestrel::platform {

// How much more the memory groups (cgroups(7)) of a process allow it, in bytes. Each figure is the
// smallest over the process's own group and all of its visible ancestors.
struct CgroupRoom {
  static constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();

  std::uint64_t physical = kUnlimited;         // RAM
  std::uint64_t swap = kUnlimited;             // swap alone; limited by version 2
  std::uint64_t memory_and_swap = kUnlimited;  // RAM and swap in one counter; limited by version 1
  bool swaps_when_full = true;  // whether the kernel swaps once `physical` is used up
};

// Reads the room left now. A figure whose files are absent or hold no number counts as unlimited.
// Returns `nullopt` if a file that exists could not be read. The swap figures are read only
// `with_swap`. All files are read below `root`: "" for this machine, or a directory that holds the
// files of another.
[[nodiscard]] std::optional<CgroupRoom> ReadCgroupRoom(std::string_view root,
                                                       bool with_swap) noexcept;

}  // namespace kestrel::platform

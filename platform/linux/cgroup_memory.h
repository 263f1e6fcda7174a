#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

namespace kestrel::platform {

// What the memory groups (cgroups(7)) of a process leave it, in bytes: the smallest over its own
// group and all ancestors in sight.
struct CgroupRoom {
  static constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();

  std::uint64_t physical = kUnlimited;  // RAM
  std::uint64_t swap = kUnlimited;      // swap; version 2 limits it by itself
  std::uint64_t together = kUnlimited;  // RAM and swap in one figure; so version 1 limits it
  bool swaps_when_full = true;          // whether swap is used once the physical room is
};

// Reads the room that is left now; unlimited is whatever cannot be read. What concerns swap alone
// is looked at only `with_swap`. All files are looked for below `root`: empty, or a
// directory with a recorded machine.
[[nodiscard]] CgroupRoom ReadCgroupRoom(std::string_view root, bool with_swap) noexcept;

}  // namespace kestrel::platform

#include "platform/linux/cgroup_memory.h"

#include <algorithm>
#include <array>
#include <optional>

#include "platform/linux/cgroup_location.h"
#include "platform/linux/text_file.h"

namespace kestrel::platform {

namespace {

// The files and figures are those of Documentation/admin-guide/cgroup-v2.rst and
// cgroup-v1/memory.rst in the kernel's sources.

std::optional<std::string_view> ReadFile(PathBuffer& directory, std::string_view name, char* buffer,
                                         std::size_t size) noexcept {
  const std::size_t length = directory.view().size();
  const bool fits = directory.Append("/") && directory.Append(name);
  const auto text = fits ? ReadTextFile(directory.c_str(), buffer, size) : std::nullopt;
  directory.Truncate(length);
  return text;
}

// Returns nullopt if the file cannot be read or holds anything but one number ("max", for example).
std::optional<std::uint64_t> ReadNumber(PathBuffer& directory, std::string_view name) noexcept {
  std::array<char, 32> buffer;
  auto text = ReadFile(directory, name, buffer.data(), buffer.size());
  const auto number = text ? TakeNumber(*text) : std::nullopt;
  return number && *text == "\n" ? number : std::nullopt;
}

// Version 1 writes "no limit" as the last whole page below 2^63, which is 9223372036854771712 with
// pages of 4 KiB. Limits of 2^62 and above therefore count as none; no machine has that much RAM.
std::optional<std::uint64_t> ReadLimit(PathBuffer& directory, std::string_view name) noexcept {
  constexpr std::uint64_t kNoLimit = std::uint64_t{1} << 62;
  const auto limit = ReadNumber(directory, name);
  return limit && *limit < kNoLimit ? limit : std::nullopt;
}

std::optional<std::uint64_t> TakeFigure(std::string_view statistics,
                                        std::string_view beginning) noexcept {
  auto rest = FindLine(statistics, beginning);
  const auto figure = rest ? TakeNumber(*rest) : std::nullopt;
  return figure && rest->empty() ? figure : std::nullopt;
}

std::uint64_t SaturatingAdd(std::uint64_t left, std::uint64_t right) noexcept {
  return left + std::min(right, std::numeric_limits<std::uint64_t>::max() - left);
}

std::uint64_t SaturatingSubtract(std::uint64_t left, std::uint64_t right) noexcept {
  return left - std::min(left, right);
}

// The memory that the kernel reclaims before an allocation fails, and which therefore counts as
// free: the file pages on both LRU lists, including dirty ones, which it writes out first. Pages of
// tmpfs and shared memory are on the anonymous lists, as they can only be swapped; locked pages are
// on a list of their own. Version 2 also reports reclaimable slab, which can be large, since each
// file that is opened leaves some. Returns nullopt if the figures cannot be read.
std::optional<std::uint64_t> ReadReclaimable(MemoryCgroup& group) noexcept {
  std::array<char, 4096> buffer;  // a page, in which the kernel writes it in one piece
  const auto text = ReadFile(group.directory, "memory.stat", buffer.data(), buffer.size());
  if (!text) {
    return std::nullopt;
  }
  const bool v1 = group.version == CgroupVersion::kV1;
  const auto inactive = TakeFigure(*text, v1 ? "total_inactive_file " : "inactive_file ");
  const auto active = TakeFigure(*text, v1 ? "total_active_file " : "active_file ");
  if (!inactive || !active) {
    return std::nullopt;
  }
  const auto slab = v1 ? std::nullopt : TakeFigure(*text, "slab_reclaimable ");
  return SaturatingAdd(SaturatingAdd(*inactive, *active), slab.value_or(0));
}

// Reclaim lowers the usage by `reclaimable` at most. The usage may exceed the limit, if the limit
// was lowered.
std::uint64_t Headroom(std::uint64_t limit, std::uint64_t usage,
                       std::uint64_t reclaimable) noexcept {
  return SaturatingSubtract(limit, SaturatingSubtract(usage, reclaimable));
}

// Only memory.max and memory.swap.max are limits. A process above memory.high or memory.swap.high
// is slowed down, but its allocations succeed.
void NarrowByV2(MemoryCgroup& group, bool with_swap, CgroupRoom& room) noexcept {
  PathBuffer& directory = group.directory;
  const auto limit = ReadLimit(directory, "memory.max");
  const auto usage = limit ? ReadNumber(directory, "memory.current") : std::nullopt;
  const auto reclaimable = usage ? ReadReclaimable(group) : std::nullopt;
  if (reclaimable) {
    room.physical = std::min(room.physical, Headroom(*limit, *usage, *reclaimable));
  }
  const auto swap_limit = with_swap ? ReadLimit(directory, "memory.swap.max") : std::nullopt;
  const auto swap_usage = swap_limit ? ReadNumber(directory, "memory.swap.current") : std::nullopt;
  if (swap_usage) {
    room.swap = std::min(room.swap, SaturatingSubtract(*swap_limit, *swap_usage));
  }
}

// With memory.use_hierarchy 0 a group's usage leaves out its children, so its limit does not bind
// them. Kernels from 5.11 on always write 1.
bool CountsChildren(PathBuffer& directory) noexcept {
  return ReadNumber(directory, "memory.use_hierarchy") != 0U;
}

// "memsw" counts memory and swap together. The kernel keeps its limit at or above the memory limit:
// no memory limit implies no memsw limit. The memsw files may be missing.
void NarrowByV1(MemoryCgroup& group, bool is_own, CgroupRoom& room) noexcept {
  PathBuffer& directory = group.directory;
  const auto limit = ReadLimit(directory, "memory.limit_in_bytes");
  if (!limit || (!is_own && !CountsChildren(directory))) {
    return;
  }
  const auto usage = ReadNumber(directory, "memory.usage_in_bytes");
  const auto reclaimable = usage ? ReadReclaimable(group) : std::nullopt;
  if (!reclaimable) {
    return;
  }
  room.physical = std::min(room.physical, Headroom(*limit, *usage, *reclaimable));
  const auto both_limit = ReadLimit(directory, "memory.memsw.limit_in_bytes");
  const auto both_usage =
      both_limit ? ReadNumber(directory, "memory.memsw.usage_in_bytes") : std::nullopt;
  if (both_usage) {
    room.memory_and_swap =
        std::min(room.memory_and_swap, Headroom(*both_limit, *both_usage, *reclaimable));
  }
}

// Moves on to the parent group; returns false at the topmost visible one.
bool StepUp(MemoryCgroup& group) noexcept {
  const std::string_view path = group.directory.view();
  if (path.size() <= group.top_length) {
    return false;
  }
  group.directory.Truncate(path.rfind('/'));
  return true;
}

// With swappiness 0 the kernel swaps nothing for a group at its limit: processes are killed
// although swap is free. A machine that runs out of RAM swaps nevertheless. Version 2 has one
// setting for the whole machine.
bool SwapsWhenFull(std::string_view root, const MemoryCgroup& own) noexcept {
  PathBuffer directory = own.directory;
  if (own.version == CgroupVersion::kV1) {
    return ReadNumber(directory, "memory.swappiness") != 0U;
  }
  directory.Truncate(root.size());
  return ReadNumber(directory, "proc/sys/vm/swappiness") != 0U;
}

}  // namespace

CgroupRoom ReadCgroupRoom(std::string_view root, bool with_swap) noexcept {
  CgroupRoom room;
  const auto own = FindMemoryCgroup(root);
  if (!own) {
    return room;
  }
  MemoryCgroup group = *own;
  bool is_own = true;
  do {
    if (group.version == CgroupVersion::kV2) {
      NarrowByV2(group, with_swap, room);
    } else {
      NarrowByV1(group, is_own, room);
    }
    is_own = false;
  } while (StepUp(group));
  if (with_swap && room.physical != CgroupRoom::kUnlimited) {
    room.swaps_when_full = SwapsWhenFull(root, *own);
  }
  return room;
}

}  // namespace kestrel::platform

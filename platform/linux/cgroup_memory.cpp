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

// A file that holds one number; nothing if it holds anything else, as in "max".
std::optional<std::uint64_t> ReadNumber(PathBuffer& directory, std::string_view name) noexcept {
  std::array<char, 32> buffer;
  auto text = ReadFile(directory, name, buffer.data(), buffer.size());
  const auto number = text ? TakeNumber(*text) : std::nullopt;
  return number && *text == "\n" ? number : std::nullopt;
}

// Version 1 writes "no limit" as the last whole page below 2^63, 9223372036854771712 with pages of
// 4 KiB. No machine has half of that.
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

// What the kernel takes back before it lets an allocation fail, and so counts as good as free: the
// file pages on both reclaim lists, dirty ones too, as it writes those out first. Pages of tmpfs
// and shared memory are not among them (they can only be swapped), nor are locked ones. Slab is
// told apart by version 2 only, where it may be large: each file looked at leaves some.
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

// Usage falls as far as the reclaimable part of it at most; a limit may be below it.
std::uint64_t Headroom(std::uint64_t limit, std::uint64_t usage,
                       std::uint64_t reclaimable) noexcept {
  return SaturatingSubtract(limit, SaturatingSubtract(usage, reclaimable));
}

// memory.high and memory.swap.high are no limits: above them a process is slowed down, but gets
// what it asks for. memory.max and memory.swap.max are.
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

// A group with memory.use_hierarchy 0 does not count what its children use, so its limit is not
// theirs (kernels before 5.11; later ones always write 1).
bool CountsChildren(PathBuffer& directory) noexcept {
  return ReadNumber(directory, "memory.use_hierarchy") != 0U;
}

// "memsw" is memory and swap in one counter. The kernel keeps its limit no lower than that of
// memory alone, so a group without the one has not the other. It need not be there at all.
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
    room.together = std::min(room.together, Headroom(*both_limit, *both_usage, *reclaimable));
  }
}

// Goes on to the parent group; false at the topmost in sight.
bool StepUp(MemoryCgroup& group) noexcept {
  const std::string_view path = group.directory.view();
  if (path.size() <= group.top) {
    return false;
  }
  group.directory.Truncate(path.rfind('/'));
  return true;
}

// With swappiness 0 nothing is swapped on behalf of a group at its limit: it is killed with all
// swap still free. A machine that runs out of RAM swaps nevertheless.
bool SwapsWhenFull(std::string_view root, const MemoryCgroup& own) noexcept {
  PathBuffer directory = own.directory;
  if (own.version == CgroupVersion::kV1) {
    return ReadNumber(directory, "memory.swappiness") != 0U;
  }
  directory.Truncate(root.size());  // one setting for the whole machine
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

#include "platform/linux/cgroup_memory.h"

#include <algorithm>
#include <array>
#include <optional>

#include "platform/linux/cgroup_location.h"
#include "platform/linux/optional_file.h"
#include "platform/linux/text_file.h"

namespace kestrel::platform {

namespace {

// The files and figures are those of Documentation/admin-guide/cgroup-v2.rst and
// cgroup-v1/memory.rst in the kernel's sources.

// Reads the files of the process's own group first, and of one ancestor after every StepUp.
class GroupReader {
 public:
  // `group` must outlive the reader, which moves it up to the topmost visible ancestor.
  GroupReader(MemoryCgroup& group, bool& failed) noexcept : group_(group), failed_(failed) {}

  [[nodiscard]] CgroupVersion version() const noexcept { return group_.version; }

  // Names begin with "/".
  std::optional<std::string_view> Text(std::string_view name, char* buffer,
                                       std::size_t size) noexcept {
    return ReadOptionalFile(group_.BelowTop(), name, buffer, size, failed_, group_.top.get());
  }

  std::optional<std::uint64_t> Number(std::string_view name) noexcept {
    return ReadOptionalNumber(group_.BelowTop(), name, failed_, group_.top.get());
  }

  // The root of the hierarchy has no limits: version 2 has no files for them there, and version 1
  // refuses to set them. Version 1 writes "no limit" as the last whole page below 2^63, which is
  // 9223372036854771712 with pages of 4 KiB. Limits of 2^62 and above therefore count as none; no
  // machine has that much RAM.
  std::optional<std::uint64_t> Limit(std::string_view name) noexcept {
    constexpr std::uint64_t kNoLimit = std::uint64_t{1} << 62;
    const bool is_root = group_.top_is_root && group_.BelowTop().empty();
    const auto limit = is_root ? std::nullopt : Number(name);
    return limit && *limit < kNoLimit ? limit : std::nullopt;
  }

  // Moves on to the parent group; returns false at the topmost visible one.
  bool StepUp() noexcept {
    if (group_.BelowTop().empty()) {
      return false;
    }
    group_.directory.Truncate(group_.directory.view().rfind('/'));
    return true;
  }

 private:
  MemoryCgroup& group_;
  bool& failed_;
};

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
// on a list of their own. Returns `nullopt` if the figures cannot be read.
//
// Version 2 also reports reclaimable slab, which can be large: each file that was opened leaves
// some. Half of it counts, since the kernel includes what open files and tmpfs keep in use (107 MiB
// with 80,000 open files) and reports no figure for that part.
std::optional<std::uint64_t> ReadReclaimable(GroupReader& group) noexcept {
  std::array<char, 4096> buffer;  // a page, in which the kernel writes it in one piece
  const auto text = group.Text("/memory.stat", buffer.data(), buffer.size());
  if (!text) {
    return std::nullopt;
  }
  const bool v1 = group.version() == CgroupVersion::kV1;
  const auto inactive = TakeFigure(*text, v1 ? "total_inactive_file " : "inactive_file ");
  const auto active = TakeFigure(*text, v1 ? "total_active_file " : "active_file ");
  if (!inactive || !active) {
    return std::nullopt;
  }
  const auto slab = v1 ? std::nullopt : TakeFigure(*text, "slab_reclaimable ");
  return SaturatingAdd(SaturatingAdd(*inactive, *active), slab.value_or(0) / 2);
}

// What a group may use and what it uses.
struct Counter {
  std::uint64_t limit;
  std::uint64_t usage;

  // Reclaim lowers the usage by `reclaimable` at most. The usage may exceed the limit, if the limit
  // was lowered.
  [[nodiscard]] std::uint64_t Room(std::uint64_t reclaimable = 0) const noexcept {
    return SaturatingSubtract(limit, SaturatingSubtract(usage, reclaimable));
  }
};

// Returns `nullopt` if there is no limit or the usage cannot be read.
std::optional<Counter> ReadCounter(GroupReader& group, std::string_view limit_name,
                                   std::string_view usage_name) noexcept {
  const auto limit = group.Limit(limit_name);
  const auto usage = limit ? group.Number(usage_name) : std::nullopt;
  return usage ? std::optional(Counter{*limit, *usage}) : std::nullopt;
}

// memory.zswap.writeback exists since Linux 6.8. The setting of an ancestor holds for its
// descendants.
void NarrowSwapByV2(GroupReader& group, CgroupRoom& room) noexcept {
  if (const auto swap = ReadCounter(group, "/memory.swap.max", "/memory.swap.current")) {
    room.swap = std::min(room.swap, swap->Room());
  }
  room.zswap_writeback = room.zswap_writeback && group.Number("/memory.zswap.writeback") != 0U;
}

// Of a group's files memory.stat takes longest to read, as the kernel sums it up over processors
// and descendants. Reclaim only adds room, so the file is read only if the group would be the
// tightest without it.

// Only memory.max and memory.swap.max are limits. A process above memory.high or memory.swap.high
// is slowed down, but its allocations succeed.
void NarrowByV2(GroupReader& group, bool with_swap, CgroupRoom& room) noexcept {
  const auto memory = ReadCounter(group, "/memory.max", "/memory.current");
  const bool may_bind = memory && memory->Room() < room.physical;
  const auto reclaimable = may_bind ? ReadReclaimable(group) : std::nullopt;
  if (reclaimable) {
    room.physical = std::min(room.physical, memory->Room(*reclaimable));
  }
  if (with_swap) {
    NarrowSwapByV2(group, room);
  }
}

// With memory.use_hierarchy 0 a group's usage leaves out its children, so its limit does not bind
// them. Kernels from 5.11 on always write 1.
bool CountsChildren(GroupReader& group) noexcept {
  return group.Number("/memory.use_hierarchy") != 0U;
}

// "memsw" counts memory and swap together. The kernel keeps its limit at or above the memory limit:
// no memory limit implies no memsw limit. The memsw files may be missing.
void NarrowByV1(GroupReader& group, bool is_own, CgroupRoom& room) noexcept {
  const auto memory = ReadCounter(group, "/memory.limit_in_bytes", "/memory.usage_in_bytes");
  if (!memory) {
    return;
  }
  const auto both =
      ReadCounter(group, "/memory.memsw.limit_in_bytes", "/memory.memsw.usage_in_bytes");
  const bool may_bind =
      memory->Room() < room.physical || (both && both->Room() < room.memory_and_swap);
  const bool binds = may_bind && (is_own || CountsChildren(group));
  const auto reclaimable = binds ? ReadReclaimable(group) : std::nullopt;
  if (!reclaimable) {
    return;
  }
  room.physical = std::min(room.physical, memory->Room(*reclaimable));
  if (both) {
    room.memory_and_swap = std::min(room.memory_and_swap, both->Room(*reclaimable));
  }
}

}  // namespace

std::optional<CgroupRoom> ReadCgroupRoom(std::string_view root, bool with_swap,
                                         PathBuffer* tightest) noexcept {
  CgroupRoom room;
  bool failed = false;
  auto own = FindMemoryCgroup(root, failed);
  if (own) {
    GroupReader group(*own, failed);
    bool is_own = true;
    if (with_swap && group.version() == CgroupVersion::kV1) {
      room.swappiness = group.Number("/memory.swappiness");
    }
    do {
      const std::uint64_t before = room.Memory();
      if (group.version() == CgroupVersion::kV2) {
        NarrowByV2(group, with_swap, room);
      } else {
        NarrowByV1(group, is_own, room);
      }
      is_own = false;
      if (tightest != nullptr && room.Memory() < before) {
        *tightest = own->directory;
      }
    } while (group.StepUp());
  }
  return failed ? std::nullopt : std::optional(room);
}

}  // namespace kestrel::platform

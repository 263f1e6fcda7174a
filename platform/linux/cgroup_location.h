#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/linux/path_buffer.h"

namespace kestrel::platform {

// The two interfaces to memory groups (cgroups(7)). Where both are mounted, the memory controller
// is in one of them.
enum class CgroupVersion : std::uint8_t { kV1, kV2 };

// Where the memory group of a process can be read.
struct MemoryCgroup {
  CgroupVersion version = CgroupVersion::kV2;
  PathBuffer directory;  // the group's own
  std::size_t top = 0;  // as many of the directory's first bytes name the topmost ancestor in sight
};

// The memory group to which the memory of this process is charged. Nothing if there is none, no
// mount shows it, or a path is too long. All files are looked for below `root`: empty, or a
// directory with a recorded machine.
[[nodiscard]] std::optional<MemoryCgroup> FindMemoryCgroup(std::string_view root) noexcept;

}  // namespace kestrel::platform

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/linux/path_buffer.h"
#include "platform/linux/text_file.h"

namespace kestrel::platform {

// The two interfaces to memory groups (cgroups(7)). Where both are mounted, only one of them has
// the memory controller.
enum class CgroupVersion : std::uint8_t { kV1, kV2 };

// Where the files of a process's memory group are.
struct MemoryCgroup {
  CgroupVersion version = CgroupVersion::kV2;
  PathBuffer directory;        // an ancestor's, if the paths of the group's own files are too long
  std::size_t top_length = 0;  // length of the path prefix that names the topmost visible ancestor
  FileDescriptor top;          // that ancestor's directory, opened
  bool top_is_root = false;    // whether that ancestor is known to be the root of the hierarchy

  // The part of `directory` that follows the path of `top`.
  [[nodiscard]] std::string_view BelowTop() const noexcept {
    return directory.view().substr(top_length);
  }
};

// Finds the memory group to which the kernel charges the memory of this process. Returns `nullopt`
// if there is none, no mount shows it, or a path is too long; also sets `failed` if a file that
// exists could not be read. All files are read below `root`: "" for this machine, or a directory
// that holds the files of another.
[[nodiscard]] std::optional<MemoryCgroup> FindMemoryCgroup(std::string_view root,
                                                           bool& failed) noexcept;

}  // namespace kestrel::platform

#pragma once

#include <optional>
#include <string_view>

#include "platform/platform.h"

namespace kestrel::platform {

// Reads the memory status of the machine whose files are below `root`: "" for this machine, or a
// directory that holds the files of another. Returns `nullopt` if "/proc/meminfo" there cannot be
// read or is incomplete, or if another file exists but cannot be read.
[[nodiscard]] std::optional<MemoryStatus> ReadMemoryStatus(std::string_view root) noexcept;

}  // namespace kestrel::platform

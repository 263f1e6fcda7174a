#pragma once

#include <optional>
#include <string_view>

#include "platform/linux/path_buffer.h"
#include "platform/platform.h"

namespace kestrel::platform {

// Reads the memory status of the machine whose files are below `root`: "" for this machine, or a
// directory that holds the files of another. Returns `nullopt` if "/proc/meminfo" there cannot be
// read or is incomplete, or if another file exists but cannot be read.
//
// Also writes the directory of the memory group that decides to `*group`, unless that is null; ""
// if there is no status, or another limit decides.
[[nodiscard]] std::optional<MemoryStatus> ReadMemoryStatus(std::string_view root,
                                                           PathBuffer* group = nullptr) noexcept;

}  // namespace kestrel::platform

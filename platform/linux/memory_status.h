#pragma once

#include <optional>
#include <string_view>

#include "platform/platform.h"

namespace kestrel::platform {

// The memory status of the machine whose files lie below `root`: empty for this one, or a
// directory with a recorded one.
[[nodiscard]] std::optional<MemoryStatus> ReadMemoryStatus(std::string_view root) noexcept;

}  // namespace kestrel::platform

#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrel::platform {

// Returns how many processors a list in the kernel's format names: "0-3,5\n" names five. Returns
// `nullopt` for an empty, truncated or malformed list.
[[nodiscard]] std::optional<std::uint32_t> CountListedProcessors(std::string_view list) noexcept;

// Whether a line of /proc/stat is about processors: "cpu" has the sum of all, "cpu<number>" one.
[[nodiscard]] bool IsProcessorsLine(std::string_view line) noexcept;
[[nodiscard]] bool IsOneProcessorsLine(std::string_view line) noexcept;

}  // namespace kestrel::platform

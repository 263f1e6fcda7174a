#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrel::platform {

// Returns the second number of /proc/<pid>/statm, "resident" (proc(5)), in pages; `nullopt` if the
// text does not begin with two numbers, each with a blank after it: without the blank, the number
// may be truncated.
[[nodiscard]] std::optional<std::uint64_t> ParseResidentPages(std::string_view statm) noexcept;

}  // namespace kestrel::platform

#pragma once

#include <string>
#include <string_view>

namespace kestrel::command {

// Writes to standard output past its buffer. Returns an empty text, or why it failed.
[[nodiscard]] std::string WriteOutput(std::string_view text);

}  // namespace kestrel::command

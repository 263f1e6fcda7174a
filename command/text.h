#pragma once

#include <string>
#include <string_view>

namespace kestrel::command {

inline constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";  // U+FFFD

// The text with each byte that is not valid UTF-8 replaced by `replacement`, and each control
// character by a blank: names come from a runtime and must not reach a terminal or a parser as they
// are.
std::string PrintableText(std::string_view text,
                          std::string_view replacement = kReplacementCharacter);

}  // namespace kestrel::command

#pragma once

#include <string>
#include <string_view>

namespace kestrel::command {

// The text with each byte that is not valid UTF-8 replaced by U+FFFD, and each control character by
// a blank: names come from a runtime and must not reach a terminal or a parser as they are.
std::string PrintableText(std::string_view text);

}  // namespace kestrel::command

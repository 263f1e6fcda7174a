#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrel::simulator {

struct TextProblem {
  int line = 1;    // from 1
  int column = 1;  // in bytes, from 1
  std::string message;
};

// Checks a text for what toml++ 3.3 cannot parse safely: it reaches undefined behaviour on
// non-ASCII characters outside strings, on table headers that do not begin with a key and on
// malformed values and dates, and it builds and destroys the tables of a dotted key recursively.
// Returns the first problem; `nullopt` if the text can be parsed, which does not mean that it is
// TOML.
std::optional<TextProblem> FindTextProblem(std::string_view text);

}  // namespace kestrel::simulator

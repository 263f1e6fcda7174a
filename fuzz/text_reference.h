#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What several targets compare the parsers with. Everything here is written for plainness, with
// copies and without the parsers' own helpers, so that the two do not share a mistake.

namespace kestrel::fuzz {

std::string TextOf(const std::uint8_t* data, std::size_t size);

// The input's first line, for arguments, and the rest. Without a newline all of it is the first.
struct Headed {
  std::string head;
  std::string rest;
};
Headed SplitHead(const std::string& text);

std::vector<std::string> Split(const std::string& text, char separator);

// The lines that end with a newline.
std::vector<std::string> CompleteLines(const std::string& text);

// A text of digits alone whose number is below 2^64.
std::optional<std::uint64_t> WholeNumber(const std::string& text);

// The digits at the beginning of a text.
std::string LeadingDigits(const std::string& text);

// "<number> kB" after blanks or tabs, in bytes.
std::optional<std::uint64_t> Kibibytes(const std::string& text);

// What follows `beginning` in the first complete line that has it.
std::optional<std::string> AfterBeginning(const std::string& text, const std::string& beginning);

// Whether the text is UTF-8 without surrogates and longer forms than needed.
bool IsUtf8(const std::string& text);

// Whether it has a control character of ASCII or of the block U+0080 to U+009F.
bool HasControlCharacter(const std::string& text);

}  // namespace kestrel::fuzz

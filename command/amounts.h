#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel::command {

// Reads a number of bytes with an optional unit, in any case of letters: "800MB", "1.5G", "24GiB".
// As in the tools of GNU, a letter alone and "iB" count powers of 1024, "B" after the letter powers
// of 1000. A part of a byte counts as a byte. Returns `nullopt` for any other text and from 2^64
// on.
std::optional<std::uint64_t> ParseSize(std::string_view text);

// Reads a time: a number, with "ms", "s" (which may be left out) or "m". A part of a millisecond
// counts as one. Returns `nullopt` for any other text, for 0 and for more than a day.
std::optional<std::chrono::milliseconds> ParseInterval(std::string_view text);

// Reads a whole number from 0 to `most`; `nullopt` for any other text.
std::optional<std::uint64_t> ParseNumber(std::string_view text, std::uint64_t most);

// Two decimals, rounded down, and a binary unit: "1.50 GiB"; "17 B" below 1 KiB.
std::string SizeText(std::uint64_t bytes);

}  // namespace kestrel::command

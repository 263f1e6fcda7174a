#include "command/amounts.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>

namespace kestrel::command {

namespace {

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
constexpr std::string_view kUnitLetters = "KMGTP";

bool IsDigit(char letter) { return letter >= '0' && letter <= '9'; }

// A decimal number, split so that no digit is lost.
struct Decimal {
  std::uint64_t whole = 0;
  std::string_view fraction;  // the digits after the point
  std::string_view rest;      // what follows the number
};

std::optional<Decimal> ParseDecimal(std::string_view text) {
  Decimal decimal;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), decimal.whole);
  if (error != std::errc()) {
    return std::nullopt;
  }
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  if (!text.empty() && text.front() == '.') {
    text.remove_prefix(1);
    const auto digits = static_cast<std::size_t>(
        std::find_if_not(text.begin(), text.end(), IsDigit) - text.begin());
    if (digits == 0) {
      return std::nullopt;
    }
    decimal.fraction = text.substr(0, digits);
    text.remove_prefix(digits);
  }
  decimal.rest = text;
  return decimal;
}

// Rounded up. Rounding up after each digit gives the same result as doing so once.
std::optional<std::uint64_t> Multiply(const Decimal& decimal, std::uint64_t unit) {
  std::uint64_t part = 0;
  for (auto digit = decimal.fraction.rbegin(); digit != decimal.fraction.rend(); ++digit) {
    part = (static_cast<std::uint64_t>(*digit - '0') * unit + part + 9) / 10;
  }
  if (decimal.whole > (kMost - part) / unit) {
    return std::nullopt;
  }
  return decimal.whole * unit + part;
}

std::string InCapitals(std::string_view text) {
  std::string capitals(text);
  for (char& letter : capitals) {
    letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
  }
  return capitals;
}

std::optional<std::uint64_t> UnitBytes(std::string_view text) {
  const std::string unit = InCapitals(text);
  if (unit.empty() || unit == "B") {
    return 1;
  }
  const std::size_t power = kUnitLetters.find(unit.front());
  if (power == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string suffix = unit.substr(1);
  if (!suffix.empty() && suffix != "IB" && suffix != "B") {
    return std::nullopt;
  }
  const std::uint64_t step = suffix == "B" ? 1000 : 1024;
  std::uint64_t bytes = step;
  for (std::size_t i = 0; i < power; ++i) {
    bytes *= step;
  }
  return bytes;
}

std::uint64_t MillisecondsIn(std::string_view unit) {
  if (unit == "ms") {
    return 1;
  }
  if (unit.empty() || unit == "s") {
    return 1000;
  }
  return unit == "m" ? 60'000 : 0;
}

}  // namespace

std::optional<std::uint64_t> ParseSize(std::string_view text) {
  const auto decimal = ParseDecimal(text);
  if (!decimal) {
    return std::nullopt;
  }
  const auto unit = UnitBytes(decimal->rest);
  return unit ? Multiply(*decimal, *unit) : std::nullopt;
}

std::optional<std::chrono::milliseconds> ParseInterval(std::string_view text) {
  constexpr std::uint64_t kDay = 86'400'000;
  const auto decimal = ParseDecimal(text);
  const std::uint64_t unit = decimal ? MillisecondsIn(decimal->rest) : 0;
  if (unit == 0) {
    return std::nullopt;
  }
  const std::uint64_t milliseconds = Multiply(*decimal, unit).value_or(0);
  if (milliseconds == 0 || milliseconds > kDay) {
    return std::nullopt;
  }
  return std::chrono::milliseconds(milliseconds);
}

std::optional<std::uint64_t> ParseNumber(std::string_view text, std::uint64_t most) {
  std::uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || number > most) {
    return std::nullopt;
  }
  return number;
}

std::string SizeText(std::uint64_t bytes) {
  if (bytes < 1024) {
    return std::to_string(bytes) + " B";
  }
  std::size_t power = 0;
  std::uint64_t unit = 1024;
  while (power + 1 < kUnitLetters.size() && bytes / unit >= 1024) {
    unit *= 1024;
    ++power;
  }
  const std::uint64_t hundredths = bytes % unit * 100 / unit;  // below 2^57, so no overflow
  std::string text = std::to_string(bytes / unit) + ".";
  text += hundredths < 10 ? "0" : "";
  return text + std::to_string(hundredths) + " " + kUnitLetters[power] + "iB";
}

}  // namespace kestrel::command

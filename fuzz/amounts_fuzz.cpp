// The amounts of the command line against a reference that calculates with decimal digits, and the
// text of a size against its inverse. The input is one amount a line.

#include <algorithm>
#include <map>

#include "command/amounts.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"

namespace kestrel::fuzz {

namespace {

using Units = std::map<std::string, std::uint64_t>;

std::string Capitals(std::string text) {
  for (char& letter : text) {
    letter = static_cast<char>(letter >= 'a' && letter <= 'z' ? letter - 32 : letter);
  }
  return text;
}

const Units& SizeUnits() {
  static const Units kUnits = [] {
    Units units = {{"", 1}, {"B", 1}};
    std::uint64_t decimal = 1;
    std::uint64_t binary = 1;
    for (const char letter : std::string("KMGTP")) {
      decimal *= 1000;
      binary *= 1024;
      units[{letter}] = binary;
      units[{letter, 'I', 'B'}] = binary;
      units[{letter, 'B'}] = decimal;
    }
    return units;
  }();
  return kUnits;
}

const Units kTimes = {{"", 1000}, {"s", 1000}, {"ms", 1}, {"m", 60'000}};

// The product of a decimal number without a sign and a unit, as pupils calculate it.
std::string Product(const std::string& digits, std::uint64_t unit) {
  std::string product;
  std::uint64_t carry = 0;
  for (auto digit = digits.rbegin(); digit != digits.rend() || carry != 0;) {
    carry += digit != digits.rend() ? static_cast<std::uint64_t>(*digit++ - '0') * unit : 0;
    product += static_cast<char>('0' + carry % 10);
    carry /= 10;
  }
  std::reverse(product.begin(), product.end());
  return product;
}

// "<digits>", "<digits>.<digits>", and a unit; parts of the result round it up.
std::optional<std::uint64_t> AmountOf(const std::string& text, const Units& units, bool any_case) {
  const std::string whole = LeadingDigits(text);
  std::string rest = text.substr(whole.size());
  std::string fraction;
  if (!rest.empty() && rest.front() == '.') {
    fraction = LeadingDigits(rest.substr(1));
    rest.erase(0, 1 + fraction.size());
    if (fraction.empty()) {
      return std::nullopt;
    }
  }
  const auto unit = units.find(any_case ? Capitals(rest) : rest);
  if (!WholeNumber(whole) || unit == units.end()) {
    return std::nullopt;
  }
  std::string product = Product(whole + fraction, unit->second);
  product.insert(0, fraction.size() + 1, '0');
  const std::size_t point = product.size() - fraction.size();
  const bool has_part = product.find_first_not_of('0', point) != std::string::npos;
  const auto amount = WholeNumber(product.substr(0, point));
  if (!amount || (has_part && *amount == UINT64_MAX)) {
    return std::nullopt;
  }
  return *amount + (has_part ? 1 : 0);
}

void RequireInverse(std::uint64_t bytes) {
  __extension__ using Wide = unsigned __int128;
  const std::vector<std::string> words = Split(command::SizeText(bytes), ' ');
  Require(words.size() == 2 && SizeUnits().count(Capitals(words[1])) == 1,
          "the text of a size has a unit that can be read");
  if (words[1] == "B") {
    Require(bytes < 1024 && WholeNumber(words[0]) == bytes, "small sizes are exact");
    return;
  }
  std::string digits = words[0];
  const std::size_t point = digits.find('.');
  Require(digits.size() == point + 3, "the text of a size has two decimals");
  digits.erase(point, 1);
  const Wide hundredths = WholeNumber(digits).value_or(0);
  const Wide unit = SizeUnits().at(Capitals(words[1]));
  Require(hundredths >= 100 && (hundredths < 102'400 || words[1] == "PiB"), "the unit fits");
  Require(hundredths * unit <= Wide{bytes} * 100 && (hundredths + 1) * unit > Wide{bytes} * 100,
          "the text of a size is rounded down");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::uint64_t kDay = std::uint64_t{24} * 60 * 60 * 1000;
  for (const std::string& text : Split(TextOf(data, size), '\n')) {
    const auto bytes = command::ParseSize(text);
    Require(bytes == AmountOf(text, SizeUnits(), true), "a size is that of the reference");
    const auto time = command::ParseInterval(text);
    const auto milliseconds = AmountOf(text, kTimes, false);
    Require(time.has_value() == (milliseconds.value_or(0) - 1 < kDay),
            "a time is accepted from a millisecond to a day");
    Require(!time || static_cast<std::uint64_t>(time->count()) == *milliseconds,
            "a time is that of the reference");
    const auto number = WholeNumber(text);
    Require(command::ParseNumber(text, UINT64_MAX) == number, "a number is the reference's");
    Require(
        command::ParseNumber(text, 999) == (number.value_or(1000) < 1000 ? number : std::nullopt),
        "a number above the most is refused");
    RequireInverse(bytes.value_or(size));
  }
  return 0;
}

}  // namespace kestrel::fuzz

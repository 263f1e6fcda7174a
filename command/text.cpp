#include "command/text.h"

#include <cstddef>
#include <cstdint>

namespace kestrel::command {

namespace {

// The code points that a sequence of each length may stand for (RFC 3629, section 3).
struct Range {
  std::uint32_t first;
  std::uint32_t last;
};
constexpr Range kRanges[] = {
    {0, 0}, {0, 0x7F}, {0x80, 0x7FF}, {0x800, 0xFFFF}, {0x10000, 0x10FFFF}};

std::size_t LengthFrom(unsigned char lead) {
  if (lead < 0x80) {
    return 1;
  }
  if ((lead & 0xE0U) == 0xC0) {
    return 2;
  }
  if ((lead & 0xF0U) == 0xE0) {
    return 3;
  }
  return (lead & 0xF8U) == 0xF0 ? 4 : 0;
}

// The length of the valid sequence that the text begins with; 0 if there is none.
std::size_t SequenceLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = LengthFrom(lead);
  if (length == 0 || length > text.size()) {
    return 0;
  }
  std::uint32_t point = length == 1 ? lead : lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0U) != 0x80) {
      return 0;
    }
    point = point << 6 | (byte & 0x3FU);
  }
  const bool surrogate = point >= 0xD800 && point <= 0xDFFF;
  return point < kRanges[length].first || point > kRanges[length].last || surrogate ? 0 : length;
}

bool IsControl(std::string_view sequence) {
  const auto first = static_cast<unsigned char>(sequence[0]);
  return first < 0x20 || first == 0x7F ||
         (first == 0xC2 && static_cast<unsigned char>(sequence[1]) < 0xA0);
}

}  // namespace

std::string PrintableText(std::string_view text, std::string_view replacement) {
  std::string printable;
  while (!text.empty()) {
    const std::size_t length = SequenceLength(text);
    if (length == 0) {
      printable += replacement;
    } else {
      const std::string_view sequence = text.substr(0, length);
      printable += IsControl(sequence) ? " " : sequence;
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return printable;
}

}  // namespace kestrel::command

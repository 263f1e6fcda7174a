#include "fuzz/text_reference.h"

namespace kestrel::fuzz {

namespace {

bool IsDigit(char letter) { return std::string("0123456789").find(letter) != std::string::npos; }

bool IsBetween(unsigned char byte, unsigned char first, unsigned char last) {
  return byte >= first && byte <= last;
}

// The length of the sequence at the beginning, by the table of well-formed sequences (Unicode
// standard, table 3-7); 0 if it is malformed.
std::size_t Utf8Length(const unsigned char* text, std::size_t size) {
  struct Form {
    unsigned char lead_first, lead_last, second_first, second_last;
    std::size_t length;
  };
  static constexpr Form kForms[] = {
      {0x00, 0x7F, 0, 0, 1},       {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
      {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
      {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};
  for (const Form& form : kForms) {
    if (!IsBetween(text[0], form.lead_first, form.lead_last) || size < form.length) {
      continue;
    }
    bool valid = form.length < 2 || IsBetween(text[1], form.second_first, form.second_last);
    for (std::size_t i = 2; i < form.length; ++i) {
      valid = valid && IsBetween(text[i], 0x80, 0xBF);
    }
    return valid ? form.length : 0;
  }
  return 0;
}

}  // namespace

std::string TextOf(const std::uint8_t* data, std::size_t size) { return {data, data + size}; }

Headed SplitHead(const std::string& text) {
  const std::size_t end = text.find('\n');
  return end == std::string::npos ? Headed{text, ""}
                                  : Headed{text.substr(0, end), text.substr(end + 1)};
}

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::size_t begin = 0;
  for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
    end = text.find(separator, begin);
    parts.push_back(text.substr(begin, end - begin));
  }
  return parts;
}

std::vector<std::string> CompleteLines(const std::string& text) {
  std::vector<std::string> lines = Split(text, '\n');
  lines.pop_back();
  return lines;
}

std::optional<std::uint64_t> WholeNumber(const std::string& text) {
  const std::string most = "18446744073709551615";
  if (text.empty() || LeadingDigits(text) != text) {
    return std::nullopt;
  }
  std::string digits = text;
  while (digits.size() > 1 && digits.front() == '0') {
    digits.erase(0, 1);
  }
  if (digits.size() > most.size() || (digits.size() == most.size() && digits > most)) {
    return std::nullopt;
  }
  return std::stoull(digits);
}

std::string LeadingDigits(const std::string& text) {
  std::string digits;
  for (std::size_t i = 0; i < text.size() && IsDigit(text[i]); ++i) {
    digits += text[i];
  }
  return digits;
}

std::optional<std::uint64_t> Kibibytes(const std::string& text) {
  std::string figure = text;
  while (!figure.empty() && (figure.front() == ' ' || figure.front() == '\t')) {
    figure.erase(0, 1);
  }
  const std::string digits = LeadingDigits(figure);
  const auto number = WholeNumber(digits);
  if (!number || figure != digits + " kB" || *number >= std::uint64_t{1} << 54U) {
    return std::nullopt;
  }
  return *number << 10U;
}

std::optional<std::string> AfterBeginning(const std::string& text, const std::string& beginning) {
  for (const std::string& line : CompleteLines(text)) {
    if (line.compare(0, beginning.size(), beginning) == 0) {
      return line.substr(beginning.size());
    }
  }
  return std::nullopt;
}

bool IsUtf8(const std::string& text) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
  std::size_t position = 0;
  while (position < text.size()) {
    const std::size_t length = Utf8Length(bytes + position, text.size() - position);
    if (length == 0) {
      return false;
    }
    position += length;
  }
  return true;
}

bool HasControlCharacter(const std::string& text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const auto previous = static_cast<unsigned char>(i > 0 ? text[i - 1] : '\0');
    if (byte < 0x20 || byte == 0x7F || (previous == 0xC2 && byte >= 0x80 && byte < 0xA0)) {
      return true;
    }
  }
  return false;
}

}  // namespace kestrel::fuzz

#include "utils/diagnostic_line.h"

#include <algorithm>
#include <charconv>
#include <iostream>
#include <limits>
#include <streambuf>

namespace kestrel_utils {

void WriteToStandardError(void* /*context*/, std::string_view text, bool flush) noexcept {
  try {
    std::streambuf* const buffer = std::cerr.rdbuf();
    if (buffer == nullptr) {
      return;
    }
    buffer->sputn(text.data(), static_cast<std::streamsize>(text.size()));
    if (flush || (std::cerr.flags() & std::ios::unitbuf) != 0) {
      buffer->pubsync();
    }
  } catch (...) {  // NOLINT(bugprone-empty-catch): a lost diagnostic must not become a crash.
  }
}

DiagnosticLine& DiagnosticLine::operator<<(std::string_view text) noexcept {
  while (!text.empty()) {
    if (size_ == buffer_.size()) {
      Send(/*flush=*/false);
    }
    const std::size_t count = std::min(text.size(), buffer_.size() - size_);
    std::copy_n(text.data(), count, buffer_.data() + size_);
    size_ += count;
    text.remove_prefix(count);
  }
  return *this;
}

DiagnosticLine& DiagnosticLine::operator<<(int number) noexcept {
  std::array<char, std::numeric_limits<int>::digits10 + 2> digits;  // one more digit and a sign
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return *this << std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data()));
}

void DiagnosticLine::EndLine() noexcept {
  *this << "\n";
  Send(/*flush=*/true);
}

void DiagnosticLine::Write() noexcept { Send(/*flush=*/false); }

void DiagnosticLine::Send(bool flush) noexcept {
  sink_.write(sink_.context, {buffer_.data(), size_}, flush);
  size_ = 0;
}

}  // namespace kestrel_utils

#include "utils/diagnostic_line.h"

#include <algorithm>
#include <charconv>
#include <iostream>
#include <limits>

namespace kestrel_utils {

namespace {

template <typename Action>
void IgnoringExceptions(Action action) noexcept {
  try {
    action();
  } catch (...) {  // NOLINT(bugprone-empty-catch): a lost diagnostic must not become a crash.
  }
}

}  // namespace

DiagnosticLine& DiagnosticLine::operator<<(std::string_view text) noexcept {
  while (!text.empty()) {
    if (size_ == buffer_.size()) {
      Write();
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
  Write();
  IgnoringExceptions([] { std::cerr.flush(); });
}

// std::cerr and not stderr: it is tied to std::cout, so what the host has printed before the call
// also stands before the diagnostic, and a host may redirect it.
void DiagnosticLine::Write() noexcept {
  IgnoringExceptions(
      [this] { std::cerr.write(buffer_.data(), static_cast<std::streamsize>(size_)); });
  size_ = 0;
}

}  // namespace kestrel_utils

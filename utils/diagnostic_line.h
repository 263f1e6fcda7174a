#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace kestrel_utils {

// One line for standard error. It is assembled in place, without heap memory, and written in one
// call, so that lines of several threads do not mix; a line longer than the buffer takes several.
// It ignores the format flags, the locale and the exception mask of std::cerr, changes nothing of
// its state, and never throws.
class DiagnosticLine {
 public:
  DiagnosticLine& operator<<(std::string_view text) noexcept;
  DiagnosticLine& operator<<(int number) noexcept;

  // Appends a newline, writes the line and flushes.
  void EndLine() noexcept;

  // Writes the text as it is. Flushes only if the host has set std::ios::unitbuf, as it is by
  // default.
  void Write() noexcept;

 private:
  void Send(bool flush) noexcept;

  std::array<char, 512> buffer_;
  std::size_t size_ = 0;
};

}  // namespace kestrel_utils

#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace kestrel_utils {

// One line for standard error. It is gathered in place and goes out in one write, so that lines of
// several threads interleave whole, up to the size of the buffer, and no memory is allocated. It
// ignores the format flags and the locale that the host may have set on std::cerr, and never
// throws, even where the host has made std::cerr throw. A line longer than the buffer goes out in
// several writes.
class DiagnosticLine {
 public:
  DiagnosticLine& operator<<(std::string_view text) noexcept;
  DiagnosticLine& operator<<(int number) noexcept;

  // Ends the line, writes it and flushes the stream.
  void EndLine() noexcept;

  // Writes what was gathered as it stands: no line end, no flush beyond the stream's own.
  void Write() noexcept;

 private:
  std::array<char, 512> buffer_;
  std::size_t size_ = 0;
};

}  // namespace kestrel_utils

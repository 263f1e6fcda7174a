#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace kestrel_utils {

// Where diagnostics go: standard error for the public meters, a caller's buffer for an interface
// that returns the text.
struct DiagnosticSink {
  // Takes a whole line with its newline, or a part of one that is longer than DiagnosticLine's
  // buffer. `flush` says that the line is complete and is to be visible at once.
  void (*write)(void* context, std::string_view text, bool flush) noexcept;
  void* context;
};

// Writes to the buffer of std::cerr, not through the stream: the stream's output functions would
// flush std::cout, which is tied to std::cerr, from this thread, set error bits that silence the
// host's own messages, and throw if the host asked for that. A host that gave std::cerr another
// buffer gets the text there. Flushes also where the host has std::ios::unitbuf set, as it is by
// default.
void WriteToStandardError(void* context, std::string_view text, bool flush) noexcept;

inline constexpr DiagnosticSink kStandardError = {WriteToStandardError, nullptr};

// One line of text. It is assembled in place, without heap memory, and written in one call, so that
// lines of several threads do not mix; a line longer than the buffer takes several.
class DiagnosticLine {
 public:
  explicit DiagnosticLine(DiagnosticSink sink) noexcept : sink_(sink) {}

  DiagnosticLine& operator<<(std::string_view text) noexcept;
  DiagnosticLine& operator<<(int number) noexcept;

  // Appends a newline, writes the line and flushes.
  void EndLine() noexcept;

  // Writes the text as it is, without asking for a flush.
  void Write() noexcept;

 private:
  void Send(bool flush) noexcept;

  DiagnosticSink sink_;
  std::array<char, 512> buffer_;
  std::size_t size_ = 0;
};

}  // namespace kestrel_utils

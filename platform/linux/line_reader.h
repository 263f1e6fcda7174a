#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "platform/linux/text_file.h"

namespace kestrel::platform {

// The lines of a text file of any length, one at a time through a buffer of fixed size.
class LineReader {
 public:
  // What a line and its newline must fit into.
  static constexpr std::size_t kCapacity = 2048;

  explicit LineReader(const char* path) noexcept;

  // The next line without its newline, valid until the next call. Nothing at the end, at a failure
  // (a file that cannot be opened has no lines), and after a mebibyte. Lines that exceed the buffer
  // are left out, and so is a last one without a newline.
  [[nodiscard]] std::optional<std::string_view> Next() noexcept;

 private:
  // Whether there is more text now.
  bool Refill() noexcept;

  FileDescriptor file_;
  std::array<char, kCapacity> buffer_;  // the text from begin_ to end_ is still to be given out
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  bool in_long_line_ = false;
  int reads_left_;
};

}  // namespace kestrel::platform

#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "platform/linux/text_file.h"

namespace kestrel::platform {

// Reads a text file of any length line by line, through a buffer of fixed size.
class LineReader {
 public:
  // A line of this many bytes or more is returned truncated to this size.
  static constexpr std::size_t kCapacity = 2048;

  // The file is `name`, which begins with "/", below `directory`.
  LineReader(std::string_view directory, std::string_view name) noexcept;

  // Returns the next line without its newline, valid until the next call. Returns `nullopt` at the
  // end of the file, after a failure (a file that cannot be opened has no lines), and after 1 MiB.
  // Only the first kCapacity bytes of a longer line are returned. A last line without a newline is
  // skipped.
  [[nodiscard]] std::optional<std::string_view> Next() noexcept;

  // Whether opening or reading the file failed although it is not absent (MeansAbsent).
  [[nodiscard]] bool failed() const noexcept { return failed_; }

 private:
  // Returns false if no more text could be read.
  bool Refill() noexcept;

  FileDescriptor file_;
  std::array<char, kCapacity> buffer_;  // the text from begin_ to end_ is unread
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  bool in_long_line_ = false;
  bool failed_;
  int reads_left_;
};

}  // namespace kestrel::platform

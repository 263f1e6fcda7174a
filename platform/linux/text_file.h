#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

// Small readings of the kernel's text files, without heap memory.

namespace kestrel::platform {

// A file descriptor that closes itself.
class FileDescriptor {
 public:
  // Opens read-only and close-on-exec, relative to `directory` (AT_FDCWD for none).
  FileDescriptor(int directory, const char* path) noexcept;
  explicit FileDescriptor(int descriptor) noexcept : descriptor_(descriptor) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor();

  [[nodiscard]] int get() const noexcept { return descriptor_; }
  [[nodiscard]] bool is_open() const noexcept { return descriptor_ >= 0; }
  // Hands the descriptor over to the caller.
  [[nodiscard]] int release() noexcept { return std::exchange(descriptor_, -1); }

 private:
  int descriptor_;
};

// Reads from the file's beginning in one call. Nothing if that fails; what does not fit is cut off.
[[nodiscard]] std::optional<std::string_view> ReadFromStart(int descriptor, char* buffer,
                                                            std::size_t size) noexcept;

// Opens, reads as above, and closes.
[[nodiscard]] std::optional<std::string_view> ReadTextFile(const char* path, char* buffer,
                                                           std::size_t size) noexcept;

// What follows `beginning`, which has no newline, on the first whole line that begins so. A last
// line without a newline was cut off, since the kernel ends every line, and is not looked at.
[[nodiscard]] std::optional<std::string_view> FindLine(std::string_view text,
                                                       std::string_view beginning) noexcept;

// Takes a decimal number off the front of the text; nothing, and the text unchanged, if it does
// not begin with one or that exceeds 64 bits.
[[nodiscard]] std::optional<std::uint64_t> TakeNumber(std::string_view& text) noexcept;

}  // namespace kestrel::platform

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

// Reads and parses small text files of the kernel, without heap memory.

namespace kestrel::platform {

// A file descriptor that closes itself.
class FileDescriptor {
 public:
  FileDescriptor() noexcept = default;
  // Opens read-only and close-on-exec, relative to `directory` (AT_FDCWD: the working directory).
  // If that fails, `is_open` returns false and errno has the reason.
  FileDescriptor(int directory, const char* path) noexcept;
  explicit FileDescriptor(int descriptor) noexcept : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor();

  // Opens a directory only as the place where other paths begin, which needs no right to read it.
  [[nodiscard]] static FileDescriptor OfDirectory(const char* path) noexcept;

  [[nodiscard]] int get() const noexcept { return descriptor_; }
  [[nodiscard]] bool is_open() const noexcept { return descriptor_ >= 0; }
  // Transfers the descriptor to the caller.
  [[nodiscard]] int release() noexcept { return std::exchange(descriptor_, -1); }

 private:
  int descriptor_ = -1;
};

// Reads from the beginning of the file. Returns `nullopt` if a read fails; a text that is larger
// than the buffer is truncated.
[[nodiscard]] std::optional<std::string_view> ReadFromStart(int descriptor, char* buffer,
                                                            std::size_t size) noexcept;

// Opens the file, reads it as above, and closes it.
[[nodiscard]] std::optional<std::string_view> ReadTextFile(const char* path, char* buffer,
                                                           std::size_t size) noexcept;

// Returns the rest of the first line that begins with `beginning` (which contains no newline);
// `nullopt` if there is none. The kernel ends every line with a newline, so a last line without one
// was truncated and is ignored.
[[nodiscard]] std::optional<std::string_view> FindLine(std::string_view text,
                                                       std::string_view beginning) noexcept;

// Removes a decimal number from the front of the text and returns it. Returns `nullopt` and leaves
// the text unchanged if it does not begin with a digit or the number exceeds 64 bits.
[[nodiscard]] std::optional<std::uint64_t> TakeNumber(std::string_view& text) noexcept;

}  // namespace kestrel::platform

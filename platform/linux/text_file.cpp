#include "platform/linux/text_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <system_error>

namespace kestrel::platform {

// A signal can interrupt an open: a file system in user space may serve parts of "/proc" and "/sys"
// in a container.
FileDescriptor::FileDescriptor(int directory, const char* path) noexcept {
  do {
    descriptor_ = openat(directory, path, O_RDONLY | O_CLOEXEC);
  } while (descriptor_ < 0 && errno == EINTR);
}

FileDescriptor FileDescriptor::OfDirectory(const char* path) noexcept {
  FileDescriptor directory;
  do {
    directory.descriptor_ = open(path, O_PATH | O_DIRECTORY | O_CLOEXEC);
  } while (!directory.is_open() && errno == EINTR);
  return directory;
}

FileDescriptor::~FileDescriptor() {
  if (is_open()) {
    close(descriptor_);
  }
}

// The kernel returns its own texts in one piece that ends with a newline, so most take one read. A
// file system in user space may return fewer bytes than there are.
std::optional<std::string_view> ReadFromStart(int descriptor, char* buffer,
                                              std::size_t size) noexcept {
  std::size_t length = 0;
  bool whole = false;
  while (!whole && length < size) {
    const ssize_t count =
        pread(descriptor, buffer + length, size - length, static_cast<off_t>(length));
    if (count < 0 && errno != EINTR) {
      return std::nullopt;
    }
    const auto piece = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    whole = count == 0 || (length == 0 && piece > 0 && buffer[piece - 1] == '\n');
    length += piece;
  }
  return std::string_view(buffer, length);
}

std::optional<std::string_view> ReadTextFile(const char* path, char* buffer,
                                             std::size_t size) noexcept {
  const FileDescriptor file(AT_FDCWD, path);
  return file.is_open() ? ReadFromStart(file.get(), buffer, size) : std::nullopt;
}

std::optional<std::string_view> FindLine(std::string_view text,
                                         std::string_view beginning) noexcept {
  std::size_t at = text.find(beginning);
  while (at != std::string_view::npos && at > 0 && text[at - 1] != '\n') {
    at = text.find(beginning, at + 1);
  }
  text.remove_prefix(at == std::string_view::npos ? text.size() : at + beginning.size());
  const std::size_t end = text.find('\n');
  return end == std::string_view::npos ? std::nullopt : std::optional(text.substr(0, end));
}

std::optional<std::uint64_t> TakeNumber(std::string_view& text) noexcept {
  std::uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, number);
  if (parsed.ec != std::errc{}) {
    return std::nullopt;
  }
  text.remove_prefix(static_cast<std::size_t>(parsed.ptr - text.data()));
  return number;
}

}  // namespace kestrel::platform

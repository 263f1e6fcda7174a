#include "platform/linux/text_file.h"

#include <fcntl.h>
#include <unistd.h>

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

FileDescriptor::~FileDescriptor() {
  if (is_open()) {
    close(descriptor_);
  }
}

std::optional<std::string_view> ReadFromStart(int descriptor, char* buffer,
                                              std::size_t size) noexcept {
  ssize_t count = 0;
  do {
    count = pread(descriptor, buffer, size, 0);
  } while (count < 0 && errno == EINTR);
  if (count < 0) {
    return std::nullopt;
  }
  return std::string_view(buffer, static_cast<std::size_t>(count));
}

std::optional<std::string_view> ReadTextFile(const char* path, char* buffer,
                                             std::size_t size) noexcept {
  const FileDescriptor file(AT_FDCWD, path);
  return file.is_open() ? ReadFromStart(file.get(), buffer, size) : std::nullopt;
}

std::optional<std::string_view> FindLine(std::string_view text,
                                         std::string_view beginning) noexcept {
  for (std::size_t end = 0; (end = text.find('\n')) != std::string_view::npos;) {
    if (text.substr(0, beginning.size()) == beginning) {
      return text.substr(beginning.size(), end - beginning.size());
    }
    text.remove_prefix(end + 1);
  }
  return std::nullopt;
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

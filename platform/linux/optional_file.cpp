#include "platform/linux/optional_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/linux/path_buffer.h"
#include "platform/linux/text_file.h"

namespace kestrel::platform {

namespace {

// With a slash left at its beginning, the path would be looked up from the root instead.
const char* RelativeTo(int base, const PathBuffer& path) noexcept {
  const std::size_t slashes = std::min(path.view().find_first_not_of('/'), path.view().size());
  return base == AT_FDCWD ? path.c_str() : path.c_str() + slashes;
}

}  // namespace

bool MeansAbsent(int error) noexcept {
  return error == ENOENT || error == ENOTDIR || error == ENODEV || error == EACCES ||
         error == EPERM;
}

bool FileExists(std::string_view directory, std::string_view name, bool& failed,
                int base) noexcept {
  PathBuffer path;
  if (!path.Append(directory) || !path.Append(name)) {
    return false;
  }
  const bool exists = faccessat(base, RelativeTo(base, path), F_OK, 0) == 0;
  failed = failed || (!exists && !MeansAbsent(errno));
  return exists;
}

std::optional<std::string_view> ReadOptionalFile(std::string_view directory, std::string_view name,
                                                 char* buffer, std::size_t size, bool& failed,
                                                 int base) noexcept {
  PathBuffer path;
  if (!path.Append(directory) || !path.Append(name)) {
    return std::nullopt;
  }
  const FileDescriptor file(base, RelativeTo(base, path));
  const auto text = file.is_open() ? ReadFromStart(file.get(), buffer, size) : std::nullopt;
  failed = failed || (!text && !MeansAbsent(errno));
  return text;
}

std::optional<std::uint64_t> ReadOptionalNumber(std::string_view directory, std::string_view name,
                                                bool& failed, int base) noexcept {
  std::array<char, 32> buffer;
  auto text = ReadOptionalFile(directory, name, buffer.data(), buffer.size(), failed, base);
  const auto number = text ? TakeNumber(*text) : std::nullopt;
  return number && *text == "\n" ? number : std::nullopt;
}

}  // namespace kestrel::platform

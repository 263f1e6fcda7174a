#include "platform/linux/optional_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/linux/path_buffer.h"
#include "platform/linux/text_file.h"

namespace kestrel::platform {

bool MeansAbsent(int error) noexcept {
  return error == ENOENT || error == ENOTDIR || error == ENODEV || error == EACCES ||
         error == EPERM;
}

bool FileExists(std::string_view directory, std::string_view name, bool& failed) noexcept {
  PathBuffer path;
  if (!path.Append(directory) || !path.Append(name)) {
    return false;
  }
  const bool exists = access(path.c_str(), F_OK) == 0;
  failed = failed || (!exists && !MeansAbsent(errno));
  return exists;
}

std::optional<std::string_view> ReadOptionalFile(std::string_view directory, std::string_view name,
                                                 char* buffer, std::size_t size,
                                                 bool& failed) noexcept {
  PathBuffer path;
  if (!path.Append(directory) || !path.Append(name)) {
    return std::nullopt;
  }
  const FileDescriptor file(AT_FDCWD, path.c_str());
  const auto text = file.is_open() ? ReadFromStart(file.get(), buffer, size) : std::nullopt;
  failed = failed || (!text && !MeansAbsent(errno));
  return text;
}

std::optional<std::uint64_t> ReadOptionalNumber(std::string_view directory, std::string_view name,
                                                bool& failed) noexcept {
  std::array<char, 32> buffer;
  auto text = ReadOptionalFile(directory, name, buffer.data(), buffer.size(), failed);
  const auto number = text ? TakeNumber(*text) : std::nullopt;
  return number && *text == "\n" ? number : std::nullopt;
}

}  // namespace kestrel::platform

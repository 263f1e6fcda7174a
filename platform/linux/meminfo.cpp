#include "platform/linux/meminfo.h"

#include <algorithm>
#include <limits>

#include "platform/linux/text_file.h"

namespace kestrel::platform {

namespace {

constexpr std::uint64_t kKibibyte = 1024;  // what the kernel's "kB" means

// What follows "name:" at the beginning of a line.
std::optional<std::string_view> FindLine(std::string_view text, std::string_view name) noexcept {
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) {
      return std::nullopt;  // the kernel ends every line: this one was cut off
    }
    const std::string_view line = text.substr(0, end);
    if (line.size() > name.size() && line.substr(0, name.size()) == name &&
        line[name.size()] == ':') {
      return line.substr(name.size() + 1);
    }
    text.remove_prefix(end + 1);
  }
  return std::nullopt;
}

bool ParseFigure(std::string_view text, std::string_view name, std::uint64_t& bytes) noexcept {
  auto rest = FindLine(text, name);
  if (!rest) {
    return false;
  }
  rest->remove_prefix(std::min(rest->find_first_not_of(' '), rest->size()));
  const auto kibibytes = TakeNumber(*rest);
  if (!kibibytes || *rest != " kB" ||
      *kibibytes > std::numeric_limits<std::uint64_t>::max() / kKibibyte) {
    return false;
  }
  bytes = *kibibytes * kKibibyte;
  return true;
}

}  // namespace

std::optional<Meminfo> ParseMeminfo(std::string_view text) noexcept {
  Meminfo meminfo;
  const bool complete = ParseFigure(text, "MemTotal", meminfo.total) &&
                        ParseFigure(text, "MemAvailable", meminfo.available) &&
                        ParseFigure(text, "SwapFree", meminfo.swap_free) &&
                        ParseFigure(text, "CommitLimit", meminfo.commit_limit) &&
                        ParseFigure(text, "Committed_AS", meminfo.committed);
  if (!complete || meminfo.available > meminfo.total) {
    return std::nullopt;
  }
  return meminfo;
}

}  // namespace kestrel::platform

#include "platform/linux/meminfo.h"

#include <algorithm>
#include <limits>

#include "platform/linux/text_file.h"

namespace kestrel::platform {

namespace {

constexpr std::uint64_t kKibibyte = 1024;  // what the kernel's "kB" means

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
  const bool complete = ParseFigure(text, "MemTotal:", meminfo.total) &&
                        ParseFigure(text, "MemAvailable:", meminfo.available) &&
                        ParseFigure(text, "SwapFree:", meminfo.swap_free) &&
                        ParseFigure(text, "CommitLimit:", meminfo.commit_limit) &&
                        ParseFigure(text, "Committed_AS:", meminfo.committed);
  if (!complete || meminfo.available > meminfo.total) {
    return std::nullopt;
  }
  return meminfo;
}

}  // namespace kestrel::platform

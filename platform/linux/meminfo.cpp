#include "platform/linux/meminfo.h"

#include <limits>

#include "platform/linux/text_file.h"

namespace kestrel::platform {

namespace {

// Sets `bytes`. Returns false if the line is malformed or missing; without a line that is
// `optional` it returns true and leaves `bytes` unchanged.
bool ParseFigure(std::string_view text, std::string_view name, std::uint64_t& bytes,
                 bool optional = false) noexcept {
  const auto rest = FindLine(text, name);
  const auto figure = rest ? ParseKibibytes(*rest) : std::nullopt;
  bytes = figure.value_or(bytes);
  return figure || (optional && !rest);
}

}  // namespace

std::optional<std::uint64_t> ParseKibibytes(std::string_view text) noexcept {
  constexpr std::uint64_t kKibibyte = 1024;  // the kernel writes "kB" for it
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
    text.remove_prefix(1);
  }
  const auto kibibytes = TakeNumber(text);
  if (!kibibytes || text != " kB" ||
      *kibibytes > std::numeric_limits<std::uint64_t>::max() / kKibibyte) {
    return std::nullopt;
  }
  return *kibibytes * kKibibyte;
}

std::optional<Meminfo> ParseMeminfo(std::string_view text) noexcept {
  constexpr bool kOptional = true;
  Meminfo meminfo;
  const bool complete = ParseFigure(text, "MemTotal:", meminfo.total) &&
                        ParseFigure(text, "MemAvailable:", meminfo.available) &&
                        ParseFigure(text, "SwapFree:", meminfo.swap_free) &&
                        ParseFigure(text, "CommitLimit:", meminfo.commit_limit, kOptional) &&
                        ParseFigure(text, "Committed_AS:", meminfo.committed, kOptional);
  const bool cut_off = text.empty() || text.back() != '\n';
  if (!complete || cut_off || meminfo.available > meminfo.total) {
    return std::nullopt;
  }
  return meminfo;
}

}  // namespace kestrel::platform

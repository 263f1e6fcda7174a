#include "platform/linux/online_processors.h"

#include "platform/linux/text_file.h"

namespace kestrel::platform {

namespace {

// More than any kernel can be built for (CONFIG_NR_CPUS is at most 8192 on x86-64). Numbers below
// it, each above the one before, cannot overflow the count.
constexpr std::uint64_t kNumberLimit = 1'000'000;

bool TakeCharacter(std::string_view& text, char character) noexcept {
  const bool matches = !text.empty() && text.front() == character;
  text.remove_prefix(matches ? 1 : 0);
  return matches;
}

struct Range {
  std::uint64_t first;
  std::uint64_t last;
};

// Removes "5" or "0-3" from the front of the text.
std::optional<Range> TakeRange(std::string_view& text) noexcept {
  const std::uint64_t first = TakeNumber(text).value_or(kNumberLimit);
  const std::uint64_t last =
      TakeCharacter(text, '-') ? TakeNumber(text).value_or(kNumberLimit) : first;
  return first <= last && last < kNumberLimit ? std::optional(Range{first, last}) : std::nullopt;
}

}  // namespace

std::optional<std::uint32_t> CountListedProcessors(std::string_view list) noexcept {
  std::uint64_t count = 0;
  std::uint64_t end = 0;  // one above the last number so far; the kernel lists them in order
  do {
    const auto range = TakeRange(list);
    if (!range || range->first < end) {
      return std::nullopt;
    }
    end = range->last + 1;
    count += end - range->first;
  } while (TakeCharacter(list, ','));
  // The kernel ends the list with a newline, so a list without one was truncated.
  return list == "\n" ? std::optional(static_cast<std::uint32_t>(count)) : std::nullopt;
}

bool IsProcessorsLine(std::string_view line) noexcept { return line.substr(0, 3) == "cpu"; }

bool IsOneProcessorsLine(std::string_view line) noexcept {
  return IsProcessorsLine(line) && line.size() > 3 && line[3] >= '0' && line[3] <= '9';
}

}  // namespace kestrel::platform

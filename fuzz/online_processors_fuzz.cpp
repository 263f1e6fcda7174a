// CountListedProcessors against a reference that splits the list into ranges, and the two judges of
// a line of /proc/stat. The input is the text of either file.

#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "platform/linux/online_processors.h"

namespace kestrel::fuzz {

namespace {

// Beyond it the parser refuses a number.
constexpr std::uint64_t kLimit = 1'000'000;

// Counts a list without its newline.
std::optional<std::uint64_t> CountOf(const std::string& list) {
  std::uint64_t count = 0;
  std::optional<std::uint64_t> before;
  for (const std::string& range : Split(list, ',')) {
    const std::vector<std::string> ends = Split(range, '-');
    const auto first = WholeNumber(ends.front());
    const auto last = WholeNumber(ends.back());
    const bool in_order = first && last && *first <= *last && (!before || *before < *first);
    if (ends.size() > 2 || !in_order || *last >= kLimit) {
      return std::nullopt;
    }
    count += *last - *first + 1;
    before = last;
  }
  return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = TextOf(data, size);
  const bool is_line = !text.empty() && text.find('\n') == text.size() - 1;
  const auto expected = is_line ? CountOf(text.substr(0, text.size() - 1)) : std::nullopt;
  const auto count = platform::CountListedProcessors(text);
  Require(count == expected, "the processors are counted as by the reference");
  Require(!count || (*count >= 1 && *count <= kLimit), "a list names at least one processor");

  for (const std::string& line : CompleteLines(text)) {
    const bool is_one = platform::IsOneProcessorsLine(line);
    Require(platform::IsProcessorsLine(line) == (line.rfind("cpu", 0) == 0),
            "a line of processors begins with cpu");
    Require(is_one == (line.rfind("cpu", 0) == 0 && !LeadingDigits(line.substr(3)).empty()),
            "a line of one processor has its number");
  }
  return 0;
}

}  // namespace kestrel::fuzz

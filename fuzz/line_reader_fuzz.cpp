// LineReader against a reference that has the whole text in memory. The input's first line is how
// often the rest is repeated, so that small inputs make long files.

#include "fuzz/made_up_file.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "platform/linux/line_reader.h"

namespace kestrel::fuzz {

namespace {

constexpr std::size_t kLongest = platform::LineReader::kCapacity;

// Far below the 1 MiB after which the reader stops.
constexpr std::size_t kLongestText = std::size_t{16} << 10U;

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines = Split(text, '\n');
  if (lines.back().size() < kLongest) {
    lines.pop_back();  // it has no newline; of a longer one the reader cannot know that
  }
  for (std::string& line : lines) {
    line.resize(std::min(line.size(), kLongest));
  }
  return lines;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Headed input = SplitHead(TextOf(data, size));
  const std::uint64_t times = WholeNumber(input.head).value_or(1) % 64;
  std::string text;
  for (std::uint64_t i = 0; i < times && text.size() < kLongestText; ++i) {
    text += input.rest;
  }
  const std::vector<std::string> expected = LinesOf(text);

  static MadeUpFile file;
  file.Write(text);
  platform::LineReader reader(MadeUpFile::kDirectory, file.name());
  std::size_t count = 0;
  for (auto line = reader.Next(); line; line = reader.Next()) {
    Require(count < expected.size(), "no more lines are read than there are");
    Require(*line == expected[count++], "a line is that of the reference");
  }
  Require(count == expected.size(), "every line is read");
  Require(!reader.Next() && !reader.failed(), "the end is no failure");
  return 0;
}

}  // namespace kestrel::fuzz

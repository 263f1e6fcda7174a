// FindLine and TakeNumber against references. The input's first line is what a line is to begin
// with, the rest is the text.

#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "platform/linux/text_file.h"

namespace kestrel::fuzz {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Headed input = SplitHead(TextOf(data, size));
  const auto rest = platform::FindLine(input.rest, input.head);
  const auto expected = AfterBeginning(input.rest, input.head);
  Require(rest.has_value() == expected.has_value(), "a line is found where the reference has one");
  Require(!rest || *rest == *expected, "the rest of the line is that of the reference");

  for (const std::string& line : Split(input.rest, '\n')) {
    std::string_view text = line;
    const auto number = platform::TakeNumber(text);
    const std::string digits = LeadingDigits(line);
    Require(number == WholeNumber(digits), "a number is that of the reference");
    Require(text == line.substr(number ? digits.size() : 0), "exactly the number is removed");
  }
  return 0;
}

}  // namespace kestrel::fuzz

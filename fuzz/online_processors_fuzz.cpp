// CountListedProcessors against a reference that splits the list into ranges, and the two judges of
// a line of /proc/stat. The input is the text of either file.

#include "fuzz/machine_reference.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "platform/linux/online_processors.h"

namespace kestrel::fuzz {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = TextOf(data, size);
  const auto count = platform::CountListedProcessors(text);
  Require(count == CountOfList(text), "the processors are counted as by the reference");
  Require(!count || *count >= 1, "a list names at least one processor");

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

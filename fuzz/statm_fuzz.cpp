// ParseResidentPages against a reference. The input is the text of /proc/<pid>/statm.

#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "platform/linux/statm.h"

namespace kestrel::fuzz {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = TextOf(data, size);
  const std::vector<std::string> fields = Split(text, ' ');
  const bool has_both = fields.size() >= 3 && WholeNumber(fields[0]);
  const auto expected = has_both ? WholeNumber(fields[1]) : std::nullopt;
  Require(platform::ParseResidentPages(text) == expected,
          "the resident pages are the second field of the reference");
  return 0;
}

}  // namespace kestrel::fuzz

// PrintableText, which makes the names that a runtime reports safe for a terminal and a parser. The
// input is the name.

#include "command/text.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"

namespace kestrel::fuzz {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = TextOf(data, size);
  for (const std::string_view replacement :
       {command::kReplacementCharacter, std::string_view("?")}) {
    const std::string printable = command::PrintableText(text, replacement);
    Require(IsUtf8(printable), "a printable text is UTF-8");
    Require(!HasControlCharacter(printable), "a printable text has no control character");
    Require(command::PrintableText(printable, replacement) == printable,
            "a printable text stays as it is");
    Require(!IsUtf8(text) || HasControlCharacter(text) || printable == text,
            "a text without faults stays as it is");
  }
  return 0;
}

}  // namespace kestrel::fuzz

// ParseMeminfo and ParseKibibytes against a reference. The input is the file's text.

#include "fuzz/machine_reference.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "platform/linux/meminfo.h"

namespace kestrel::fuzz {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = TextOf(data, size);
  const auto parsed = platform::ParseMeminfo(text);
  const auto expected = MeminfoOf(text);
  Require(parsed.has_value() == expected.has_value(), "a text is refused as the reference does");
  if (parsed) {
    Require(parsed->total == expected->total, "MemTotal is that of the reference");
    Require(parsed->available == expected->available, "MemAvailable is that of the reference");
    Require(parsed->swap_free == expected->swap_free, "SwapFree is that of the reference");
    Require(parsed->commit_limit == expected->commit_limit, "CommitLimit is the reference's");
    Require(parsed->committed == expected->committed, "Committed_AS is the reference's");
    Require(parsed->available <= parsed->total, "no more is available than there is");
  }
  for (const std::string& line : Split(text, '\n')) {
    Require(platform::ParseKibibytes(line) == Kibibytes(line),
            "a figure in kB is that of the reference");
  }
  return 0;
}

}  // namespace kestrel::fuzz

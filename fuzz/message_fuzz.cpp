// The assembly of diagnostics: a line of any pieces reaches its destination as a whole, and a
// record of the C interface keeps its beginning. The input is the pieces, one a line.

#include <string>

#include "c/message.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "utils/diagnostic_line.h"

namespace kestrel::fuzz {

namespace {

struct Written {
  std::string text;
  bool flushed = false;
};

void Keep(void* context, std::string_view text, bool flush) noexcept {
  Written& written = *static_cast<Written*>(context);
  written.text += text;
  written.flushed = flush;
}

void Assemble(const std::vector<std::string>& pieces, kestrel_utils::DiagnosticSink sink) {
  kestrel_utils::DiagnosticLine line(sink);
  for (const std::string& piece : pieces) {
    line << piece << static_cast<int>(piece.size()) - 2;
  }
  line.EndLine();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string> pieces = Split(TextOf(data, size), '\n');
  std::string expected;
  for (const std::string& piece : pieces) {
    expected += piece + std::to_string(static_cast<int>(piece.size()) - 2);
  }

  Written written;
  Assemble(pieces, {Keep, &written});
  Require(written.text == expected + "\n" && written.flushed, "a line arrives as a whole");

  const kestrel_result result{};
  c::Message message(&result);
  Require(!message.IsReported() && message.TextOr("none") == std::string("none"),
          "without a diagnostic there is no message");
  Assemble(pieces, message.Sink());
  expected = expected.substr(0, KESTREL_MESSAGE_SIZE - 1);
  expected.resize(std::min(expected.size(), expected.find('\0')));
  Require(message.IsReported() && message.TextOr("none") == expected,
          "a message is the beginning of its line");
  return 0;
}

}  // namespace kestrel::fuzz

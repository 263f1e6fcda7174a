#include "command/text.h"

#include <gtest/gtest.h>

namespace kestrel::tests {
namespace {

using command::PrintableText;

constexpr const char* kReplacement = "\xEF\xBF\xBD";

TEST(TextTest, ValidTextIsKept) {
  for (const char* text : {"", "AMD Radeon\xE2\x84\xA2 RX", "\xC3\xA9", "\xF0\x9F\x98\x80"}) {
    EXPECT_EQ(PrintableText(text), text);
  }
}

TEST(TextTest, ControlCharactersBecomeBlanks) {
  EXPECT_EQ(PrintableText("a\x1B[2Jb\nc\x7F"), "a [2Jb c ");
  EXPECT_EQ(PrintableText("\xC2\x9B"
                          "1m"),
            " 1m");  // CSI as one character
}

TEST(TextTest, EachInvalidByteIsReplaced) {
  for (const char* text : {"\xFF", "\x80", "\xC3", "\xC0", "\xF8"}) {
    EXPECT_EQ(PrintableText(text), kReplacement);
  }
  const std::string twice = std::string(kReplacement) + kReplacement;
  EXPECT_EQ(PrintableText("\xC0\x80"), twice);                     // overlong
  EXPECT_EQ(PrintableText("\xED\xA0\x80"), twice + kReplacement);  // a surrogate
  EXPECT_EQ(PrintableText("a\xE2\x84"
                          "b"),
            "a" + twice + "b");
}

}  // namespace
}  // namespace kestrel::tests

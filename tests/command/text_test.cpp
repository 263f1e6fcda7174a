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

// The first and the last code point of each length of its sequence and next to the surrogates.
TEST(TextTest, EverySequenceUpToTheLastCodePointIsKept) {
  for (const char* text :
       {"\x7E", "\xC2\xA0", "\xC3\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xE1\x80\x80", "\xED\x9F\xBF",
        "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF1\x80\x80\x80", "\xF3\xBF\xBF\xBF",
        "\xF4\x8F\xBF\xBF"}) {
    EXPECT_EQ(PrintableText(text), text);
  }
}

TEST(TextTest, SequenceThatTheTextCutsIsReplaced) {
  const std::string_view text = "\xE2\x84\xA2";
  EXPECT_EQ(PrintableText(text.substr(0, 2), "?"), "??");
}

TEST(TextTest, SequencesThatStandForNoCodePointAreReplaced) {
  for (const std::string text :
       {"\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xED\xA0\x80", "\xED\xBF\xBF",
        "\xF4\x90\x80\x80", "\xF8\x88\x80\x80", "\xF9\x80\x80\x80", "\xFC\x80\x80\x80"}) {
    std::string replaced;
    for (std::size_t i = 0; i < text.size(); ++i) {
      replaced += kReplacement;
    }
    EXPECT_EQ(PrintableText(text), replaced);
  }
}

TEST(TextTest, EveryControlCharacterBecomesABlank) {
  for (char letter = 1; letter < 0x20; ++letter) {
    EXPECT_EQ(PrintableText(std::string(1, letter)), " ");
  }
  EXPECT_EQ(PrintableText("\xC2\x80"), " ");
  EXPECT_EQ(PrintableText("\xC2\x9F"), " ");
  EXPECT_EQ(PrintableText("!"), "!");
  EXPECT_EQ(PrintableText("\xC3\x80"), "\xC3\x80");
  EXPECT_EQ(PrintableText("a\xFF", "?"), "a?");
}

}  // namespace
}  // namespace kestrel::tests

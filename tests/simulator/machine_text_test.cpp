#include "simulator/machine_text.h"

#include <gtest/gtest.h>

#include <string>

namespace kestrel::tests {

namespace {

using simulator::FindTextProblem;

// Returns "line:column: message"; empty if the text has no problem.
std::string ProblemOf(const std::string& text) {
  const auto problem = FindTextProblem(text);
  return problem ? std::to_string(problem->line) + ":" + std::to_string(problem->column) + ": " +
                       problem->message
                 : "";
}

const std::string kNoKey = "a table header must begin with a key";
const std::string kForeignCharacter = "only a string or a comment may contain this character";
const std::string kMultiLine = "a string of several lines may contain ASCII only";
const std::string kManyDots = "too many dots in one line";

TEST(MachineTextTest, PlainTextHasNoProblem) {
  EXPECT_EQ(ProblemOf(""), "");
  EXPECT_EQ(ProblemOf("device = []\n"), "");
  EXPECT_EQ(ProblemOf("[[device]] # a card\r\nname = 'a'\n\n[fault]\nstatus = \"b\"\n"), "");
  EXPECT_EQ(ProblemOf("device = [{name = 'a', total_memory = +1_000}]"), "");
}

TEST(MachineTextTest, ByteOrderMarkHasNoProblem) {
  EXPECT_EQ(ProblemOf("\xef\xbb\xbf[[device]]\n"), "");
  EXPECT_EQ(ProblemOf("\xef\xbb\xbf[[+x]]"), "1:6: " + kNoKey);
  EXPECT_EQ(ProblemOf("\n\xef\xbb\xbf"), "2:1: " + kForeignCharacter);
}

TEST(MachineTextTest, HeaderWithoutKeyIsAProblem) {
  EXPECT_EQ(ProblemOf("[[+x]]"), "1:3: " + kNoKey);
  EXPECT_EQ(ProblemOf("[ + ]"), "1:3: " + kNoKey);
  EXPECT_EQ(ProblemOf("a = 1\n  [\n]"), "2:4: " + kNoKey);
  EXPECT_EQ(ProblemOf("[ #a"), "1:3: " + kNoKey);
  EXPECT_EQ(ProblemOf("[.a]"), "1:2: " + kNoKey);
  EXPECT_EQ(ProblemOf("[["), "1:3: " + kNoKey);
}

TEST(MachineTextTest, HeaderMayFollowACommentOnTheLineBefore) {
  EXPECT_EQ(ProblemOf("a = 1 # b\n[+x]"), "2:2: " + kNoKey);
}

TEST(MachineTextTest, HeaderMayBeginWithAnyCharacterOfAKey) {
  const std::string characters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-";
  for (const char character : characters) {
    EXPECT_EQ(ProblemOf(std::string("[") + character + "]"), "") << character;
  }
  for (const char character : std::string("`{@[/:+.")) {
    EXPECT_EQ(ProblemOf(std::string("[a]\n[ ") + character + "]"), "2:3: " + kNoKey) << character;
  }
}

TEST(MachineTextTest, HeaderWithQuotedKeyHasNoProblem) {
  EXPECT_EQ(ProblemOf("['a']\n[\"b\"]\n[[ 'c' ]]"), "");
}

TEST(MachineTextTest, BracketsOfValuesAreNoHeaders) {
  EXPECT_EQ(ProblemOf("a = [\n[+1],\n[\n]\n]\n"), "");
  EXPECT_EQ(ProblemOf("a = [ # [\n+1]\n[[+x]]"), "3:3: " + kNoKey);
}

TEST(MachineTextTest, NonAsciiOutsideStringsIsAProblem) {
  for (const char* text : {"a = \xc9\x96", "[a\xc9\x96]", "a.b\xc9\x96 = 1", "a = [\xc9\x96]"}) {
    EXPECT_NE(ProblemOf(text).find(kForeignCharacter), std::string::npos) << text;
  }
}

TEST(MachineTextTest, NonAsciiInStringsAndCommentsHasNoProblem) {
  EXPECT_EQ(ProblemOf("a = \"\xc9\x96\" # \xc9\x96\nb = '\xc9\x96'\n\"\xc9\x96\" = 1"), "");
}

TEST(MachineTextTest, NonAsciiInStringsOfSeveralLinesIsAProblem) {
  EXPECT_EQ(ProblemOf("a = \"\"\"\n\\\n\xc9\x96\"\"\""), "3:1: " + kMultiLine);
  EXPECT_EQ(ProblemOf("a = '''\xc9\x96'''"), "1:8: " + kMultiLine);
  EXPECT_EQ(ProblemOf("a = '''\x80'''"), "1:8: " + kMultiLine);
  EXPECT_EQ(ProblemOf("a = '''\x7f'''"), "");
}

TEST(MachineTextTest, StringEndsAtItsClosingQuotes) {
  EXPECT_EQ(ProblemOf("a = \"x\\\"\" \xc9\x96"), "1:11: " + kForeignCharacter);
  EXPECT_EQ(ProblemOf("a = 'x\\' \xc9\x96"), "1:10: " + kForeignCharacter);
  EXPECT_EQ(ProblemOf("a = \"\" \xc9\x96"), "1:8: " + kForeignCharacter);
  for (const char* quotes : {"\"\"\"", "\"\"\"\"", "\"\"\"\"\""}) {
    EXPECT_NE(
        ProblemOf("a = \"\"\"\nx" + std::string(quotes) + " \xc9\x96").find(kForeignCharacter),
        std::string::npos)
        << quotes;
  }
}

TEST(MachineTextTest, ValueThatDoesNotEndIsAProblem) {
  const std::string open = "a value is not closed";
  EXPECT_EQ(ProblemOf("a = 0'\xc9\x96'"), "1:6: " + open);
  EXPECT_EQ(ProblemOf("a = X'\xc9\x96'"), "1:6: " + open);
  EXPECT_EQ(ProblemOf("a = -0.'\xc9\x96'"), "1:8: " + open);
  EXPECT_EQ(ProblemOf("a = 1b=[[\"\xc9\x96\""), "1:7: " + open);
  EXPECT_EQ(ProblemOf("a = == 1"), "1:5: a value is missing");
  EXPECT_EQ(ProblemOf("'a'={'c'=['d','e'] , \"f\"='g', h=true}"), "");
}

TEST(MachineTextTest, PunctuationOutsideStringsIsAProblem) {
  EXPECT_EQ(ProblemOf("a = ?'\xc9\x96'"), "1:5: " + kForeignCharacter);
  EXPECT_EQ(ProblemOf("a\x01 = 1"), "1:2: " + kForeignCharacter);
  EXPECT_EQ(ProblemOf(std::string("a = 1\0", 6)), "1:6: a value is not closed");
}

TEST(MachineTextTest, DateOrTimeIsAProblem) {
  const std::string date = "a value must not be a date or a time";
  EXPECT_EQ(ProblemOf("a = 1979-05-27Tz0"), "1:9: " + date);
  EXPECT_EQ(ProblemOf("a = [07:32]"), "1:8: " + date);
  EXPECT_EQ(ProblemOf("a = [{b-c = 1, d-e = 2}, 1-2]"), "1:27: " + date);
  EXPECT_EQ(ProblemOf("1-a:2 = -1_000\nb = [-1, 'x-1:2'] # 1-1:1\n"), "");
}

TEST(MachineTextTest, MissingValueOrCommaAtTheEndOfALineIsLeftToTheParser) {
  EXPECT_EQ(ProblemOf("a =\nb-c = 1"), "");
  EXPECT_EQ(ProblemOf("a = [1\nb-c]"), "");
  EXPECT_EQ(ProblemOf("a = ['x'\nb-c]"), "");
  EXPECT_EQ(ProblemOf("a = [[]\nb-c]"), "");
  EXPECT_EQ(ProblemOf("a = [\n1-2]"), "2:2: a value must not be a date or a time");
}

TEST(MachineTextTest, UnmatchedBracketIsAProblem) {
  const std::string bracket = "a bracket is closed that is not open";
  EXPECT_EQ(ProblemOf("a = [}"), "1:6: " + bracket);
  EXPECT_EQ(ProblemOf("a = }"), "1:5: " + bracket);
  EXPECT_EQ(ProblemOf("[a]]"), "1:4: " + bracket);
  EXPECT_EQ(ProblemOf("a = [{}, [{}]]\n[b]\n[[c]]"), "");
}

TEST(MachineTextTest, StringIsFollowedAcrossItsLines) {
  EXPECT_EQ(ProblemOf("a = \"\"\"\n[+x]\n\"\"\"\n[+x]"), "4:2: " + kNoKey);
  EXPECT_EQ(ProblemOf("a = '''\n[+x]\n'''\n[+x]"), "4:2: " + kNoKey);
}

TEST(MachineTextTest, OneOrTwoQuotesDoNotEndAStringOfSeveralLines) {
  for (const char* content : {"\"", "\"\"", "\"x\"", "x\"\"y"}) {
    EXPECT_EQ(ProblemOf(std::string("a = \"\"\"") + content + "\n[+x]\n\"\"\"\n[+x]"),
              "4:2: " + kNoKey)
        << content;
  }
}

TEST(MachineTextTest, QuoteRightAfterAStringIsLeftToTheParser) {
  EXPECT_EQ(ProblemOf("a = 'x''\xc9\x96'"), "");
  EXPECT_EQ(ProblemOf("a = \"\"\"x\"\"\"\"\"\"\xc9\x96\""), "");
}

TEST(MachineTextTest, ManyDotsInOneLineAreAProblem) {
  const std::string dots(16, '.');
  EXPECT_EQ(ProblemOf(dots), "");
  EXPECT_EQ(ProblemOf(dots + "\n" + dots), "");
  EXPECT_EQ(ProblemOf("'" + dots + dots + "' # " + dots), "");
  EXPECT_EQ(ProblemOf(dots + " 'a'."), "1:21: " + kManyDots);
  EXPECT_EQ(ProblemOf(dots + ".."), "1:17: " + kManyDots);
}

TEST(MachineTextTest, StringOfOneLineEndsWithItsLine) {
  EXPECT_EQ(ProblemOf("a = 'x\n\xc9\x96"), "2:1: " + kForeignCharacter);
}

TEST(MachineTextTest, UnfinishedStringHasNoProblem) {
  for (const char* text : {"a = \"", "a = \"\\", "a = '", "a = \"\"\"", "a = \"x\nb"}) {
    EXPECT_EQ(ProblemOf(text), "") << text;
  }
}

}  // namespace

}  // namespace kestrel::tests

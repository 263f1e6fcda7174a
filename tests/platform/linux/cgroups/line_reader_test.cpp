#include "platform/linux/line_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/linux/path_buffer.h"
#include "tests/platform/linux/cgroups/machine_tree.h"

namespace kestrel::platform {
namespace {

using testing::MachineTree;

constexpr std::size_t kCapacity = LineReader::kCapacity;

std::vector<std::string> LinesOf(const std::string& path) {
  std::vector<std::string> lines;
  LineReader reader(path.c_str());
  while (const auto line = reader.Next()) {
    lines.emplace_back(*line);
  }
  return lines;
}

class LineReaderTest : public ::testing::Test {
 protected:
  std::vector<std::string> Lines(const std::string& text) {
    tree_.Write("/text", text);
    return LinesOf(tree_.root() + "/text");
  }

  MachineTree tree_;
};

using Strings = std::vector<std::string>;

TEST_F(LineReaderTest, GivesEachLineWithoutItsNewline) {
  EXPECT_EQ(Lines("one\n\nthree\n"), Strings({"one", "", "three"}));
}

TEST_F(LineReaderTest, LeavesOutALastLineWithoutNewline) {
  EXPECT_EQ(Lines("whole\ncut of"), Strings({"whole"}));
}

TEST_F(LineReaderTest, AnEmptyFileHasNoLines) { EXPECT_EQ(Lines(""), Strings()); }

TEST_F(LineReaderTest, AMissingFileHasNoLines) {
  EXPECT_EQ(LinesOf(tree_.root() + "/missing"), Strings());
}

TEST_F(LineReaderTest, AFileThatCannotBeReadHasNoLines) {
  EXPECT_EQ(LinesOf(tree_.root()), Strings());  // a directory opens, but does not read
}

TEST_F(LineReaderTest, JoinsLinesAcrossReads) {
  Strings expected;
  std::string text;
  for (std::size_t length = 0; length < kCapacity; length += 7) {
    expected.emplace_back(length, 'x');
    text += expected.back() + "\n";
  }
  EXPECT_EQ(Lines(text), expected);
}

TEST_F(LineReaderTest, GivesALineThatJustFits) {
  const std::string fits(kCapacity - 1, 'x');
  EXPECT_EQ(Lines("a\n" + fits + "\nb\n"), Strings({"a", fits, "b"}));
}

TEST_F(LineReaderTest, LeavesOutLinesThatDoNotFit) {
  for (const std::size_t length :
       {kCapacity, kCapacity + 1, 2 * kCapacity - 1, 2 * kCapacity, 10 * kCapacity}) {
    EXPECT_EQ(Lines("a\n" + std::string(length, 'x') + "\nb\n"), Strings({"a", "b"})) << length;
  }
}

TEST_F(LineReaderTest, StopsAfterAMebibyte) {
  const std::string line(1023, 'x');
  std::string text;
  for (int count = 0; count < 2048; ++count) {
    text += line + "\n";
  }
  EXPECT_EQ(Lines(text).size(), 1024U);
}

TEST(PathBufferTest, KeepsRoomForTheClosingNul) {
  constexpr std::size_t kLongest = PathBuffer::kCapacity - 1;
  PathBuffer path;
  EXPECT_TRUE(path.Append(std::string(kLongest, 'x')));
  EXPECT_EQ(path.view().size(), kLongest);
  EXPECT_EQ(path.c_str()[kLongest], '\0');
}

TEST(PathBufferTest, StaysUnchangedWhenAPieceDoesNotFit) {
  PathBuffer path;
  EXPECT_TRUE(path.Append("/a"));
  EXPECT_FALSE(path.Append(std::string(PathBuffer::kCapacity - 2, 'x')));
  EXPECT_STREQ(path.c_str(), "/a");
  EXPECT_TRUE(path.Append(std::string(PathBuffer::kCapacity - 3, 'x')));
  EXPECT_FALSE(path.Append("x"));
  EXPECT_TRUE(path.Append(""));
}

TEST(PathBufferTest, TruncatesToABeginning) {
  PathBuffer path;
  EXPECT_EQ(path.view(), "");
  EXPECT_TRUE(path.Append("/a/b"));
  path.Truncate(2);
  EXPECT_EQ(path.view(), "/a");
  EXPECT_STREQ(path.c_str(), "/a");
}

TEST(FindLineTest, FindsWhatFollowsTheBeginning) {
  EXPECT_EQ(FindLine("a 1\nb 2\n", "b "), "2");
  EXPECT_EQ(FindLine("b 1\nb 2\n", "b "), "1");
  EXPECT_EQ(FindLine("b \n", "b "), "");
}

TEST(FindLineTest, FindsNothingElsewhereOnALine) {
  EXPECT_EQ(FindLine("total_file 1\n", "file "), std::nullopt);
  EXPECT_EQ(FindLine("file_dirty 1\n", "file "), std::nullopt);
  EXPECT_EQ(FindLine("fi\nle 1\n", "file "), std::nullopt);
  EXPECT_EQ(FindLine("", "file "), std::nullopt);
}

TEST(FindLineTest, DoesNotTrustALineThatWasCutOff) {
  EXPECT_EQ(FindLine("a 1\nfile 12", "file "), std::nullopt);
}

}  // namespace
}  // namespace kestrel::platform

#include "platform/linux/line_reader.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/path_buffer.h"
#include "tests/platform/linux/faked_reads.h"
#include "tests/platform/linux/machine_tree.h"

namespace kestrel::tests {
namespace {

using platform::LineReader;

constexpr std::size_t kCapacity = LineReader::kCapacity;

std::vector<std::string> LinesOf(const std::string& directory, bool expect_failure = false) {
  std::vector<std::string> lines;
  LineReader reader(directory, "/text");
  while (const auto line = reader.Next()) {
    lines.emplace_back(*line);
  }
  EXPECT_EQ(reader.failed(), expect_failure);
  return lines;
}

class LineReaderTest : public testing::Test {
 protected:
  LineReaderTest() { FakedReads() = {}; }
  ~LineReaderTest() override { FakedReads() = {}; }

  std::vector<std::string> Lines(const std::string& text) {
    tree_.Write("/text", text);
    return LinesOf(tree_.root());
  }

  MachineTree tree_;
};

using Strings = std::vector<std::string>;

TEST_F(LineReaderTest, LinesComeWithoutNewline) {
  EXPECT_EQ(Lines("one\n\nthree\n"), Strings({"one", "", "three"}));
}

TEST_F(LineReaderTest, LastLineWithoutNewlineIsSkipped) {
  EXPECT_EQ(Lines("whole\ncut of"), Strings({"whole"}));
}

TEST_F(LineReaderTest, EmptyFileHasNoLines) { EXPECT_EQ(Lines(""), Strings()); }

TEST_F(LineReaderTest, NoLineFollowsTheEnd) {
  for (const std::string text : {"", "\n", "\n\n", "cut off"}) {
    tree_.Write("/text", text);
    LineReader reader(tree_.root(), "/text");
    while (reader.Next()) {
    }
    for (int call = 0; call < 3; ++call) {
      EXPECT_EQ(reader.Next(), std::nullopt) << text;
    }
    EXPECT_FALSE(reader.failed());
  }
}

TEST_F(LineReaderTest, MissingFileHasNoLines) {
  EXPECT_EQ(LinesOf(tree_.root() + "/missing"), Strings());
}

TEST_F(LineReaderTest, PathThatDoesNotFitHasNoLines) {
  EXPECT_EQ(LinesOf(std::string(5000, '/')), Strings());
  // The directory fits, and exists.
  EXPECT_EQ(LinesOf(std::string(platform::PathBuffer::kCapacity - 1, '/')), Strings());
}

// A loop of symbolic links.
TEST_F(LineReaderTest, FileThatCannotBeOpenedFails) {
  std::filesystem::create_symlink("text", tree_.root() + "/text");
  EXPECT_EQ(LinesOf(tree_.root(), /*expect_failure=*/true), Strings());
}

TEST_F(LineReaderTest, UnreadableFileFails) {
  tree_.MakeUnreadable("/text");
  EXPECT_EQ(LinesOf(tree_.root(), /*expect_failure=*/true), Strings());
}

TEST_F(LineReaderTest, InterruptedReadIsRepeated) {
  tree_.Write("/text", "one\ntwo\n");
  FakedReads().errors = {EINTR, EINTR};
  EXPECT_EQ(LinesOf(tree_.root()), Strings({"one", "two"}));
}

TEST_F(LineReaderTest, ReadThatFailsIsNotRepeated) {
  tree_.Write("/text", "one\n");
  FakedReads().errors = {EIO};
  EXPECT_EQ(LinesOf(tree_.root(), /*expect_failure=*/true), Strings());
  EXPECT_EQ(FakedReads().calls, 1);
}

// The controller of a memory group may have been switched off.
TEST_F(LineReaderTest, FileThatVanishedHasNoLines) {
  tree_.Write("/text", "one\n");
  FakedReads().errors = {ENODEV};
  EXPECT_EQ(LinesOf(tree_.root()), Strings());
}

TEST_F(LineReaderTest, EndOfFileIsReadOnce) {
  tree_.Write("/text", "one\ntwo\n");
  EXPECT_EQ(LinesOf(tree_.root()), Strings({"one", "two"}));
  EXPECT_EQ(FakedReads().calls, 2);
}

TEST_F(LineReaderTest, EndlessInterruptionsEndTheReading) {
  tree_.Write("/text", "one\n");
  FakedReads().errors.assign(2000, EINTR);
  EXPECT_EQ(LinesOf(tree_.root()), Strings());
  EXPECT_EQ(FakedReads().calls, 1024);
}

TEST_F(LineReaderTest, LinesAcrossReadsAreJoined) {
  Strings expected;
  std::string text;
  for (std::size_t length = 0; length < kCapacity; length += 7) {
    expected.emplace_back(length, 'x');
    text += expected.back() + "\n";
  }
  EXPECT_EQ(Lines(text), expected);
}

TEST_F(LineReaderTest, LineThatJustFitsIsReturned) {
  const std::string fits(kCapacity - 1, 'x');
  EXPECT_EQ(Lines("a\n" + fits + "\nb\n"), Strings({"a", fits, "b"}));
}

TEST_F(LineReaderTest, OverlongLinesAreTruncated) {
  const std::string whole(kCapacity, 'x');
  for (const std::size_t length :
       {kCapacity, kCapacity + 1, 2 * kCapacity - 1, 2 * kCapacity, 10 * kCapacity}) {
    EXPECT_EQ(Lines("a\n" + std::string(length, 'x') + "\nb\n"), Strings({"a", whole, "b"}))
        << length;
  }
}

TEST_F(LineReaderTest, ReadingStopsAfterAMebibyte) {
  const std::string line(1023, 'x');
  std::string text;
  for (int count = 0; count < 2048; ++count) {
    text += line + "\n";
  }
  EXPECT_EQ(Lines(text).size(), 1024U);
}

}  // namespace
}  // namespace kestrel::tests

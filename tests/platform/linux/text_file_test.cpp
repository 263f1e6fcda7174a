#include "platform/linux/text_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>

#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/faked_reads.h"
#include "tests/platform/linux/interrupted_open.h"

namespace kestrel::tests {
namespace {

using platform::FileDescriptor;
using platform::FindLine;
using platform::ReadTextFile;
using platform::TakeNumber;

class TextFileTest : public testing::Test {
 protected:
  std::string path_ = testing::TempDir() + "text_file_test." + std::to_string(getpid());
  TextFileTest() {
    std::ofstream(path_) << "a text";
    FakedReads() = {};
  }
  ~TextFileTest() override {
    FakedReads() = {};
    unlink(path_.c_str());
  }
};

TEST_F(TextFileTest, LongTextIsTruncatedToTheBuffer) {
  std::array<char, 16> buffer;
  EXPECT_EQ(ReadTextFile(path_.c_str(), buffer.data(), buffer.size()), "a text");
  EXPECT_EQ(ReadTextFile(path_.c_str(), buffer.data(), 3), "a t");
}

TEST_F(TextFileTest, UnreadableFileHasNoText) {
  std::array<char, 16> buffer;
  EXPECT_FALSE(ReadTextFile("/nowhere/at/all", buffer.data(), buffer.size()));
  EXPECT_FALSE(ReadTextFile("/", buffer.data(), buffer.size()));
}

TEST_F(TextFileTest, InterruptedOpenIsRepeated) {
  std::array<char, 16> buffer;
  InterruptOpens(2);
  EXPECT_EQ(ReadTextFile(path_.c_str(), buffer.data(), buffer.size()), "a text");
}

// The calls set errno only if they fail, so an interruption of an earlier call may still be there.
TEST_F(TextFileTest, InterruptionOfEarlierCallDoesNotRepeatTheRead) {
  std::ofstream(path_, std::ios::trunc).close();
  std::array<char, 16> buffer;
  errno = EINTR;
  EXPECT_EQ(ReadTextFile(path_.c_str(), buffer.data(), buffer.size()), "");
}

TEST_F(TextFileTest, TextThatComesInPiecesIsReadToItsEnd) {
  std::array<char, 16> buffer;
  for (const std::size_t piece : {1, 2, 4, 6}) {
    FakedReads().most = piece;
    EXPECT_EQ(ReadTextFile(path_.c_str(), buffer.data(), buffer.size()), "a text") << piece;
    EXPECT_EQ(ReadTextFile(path_.c_str(), buffer.data(), 3), "a t") << piece;
  }
}

TEST_F(TextFileTest, ReadStopsWhereTheFirstPieceEndsALine) {
  std::ofstream(path_) << "a line\n";
  std::array<char, 16> buffer;
  EXPECT_EQ(ReadTextFile(path_.c_str(), buffer.data(), buffer.size()), "a line\n");
  EXPECT_EQ(FakedReads().calls, 1);
}

TEST_F(TextFileTest, LaterPieceThatEndsALineDoesNotStopTheRead) {
  std::ofstream(path_) << "one\ntwo\nthree";
  std::array<char, 16> buffer;
  FakedReads().most = 2;
  EXPECT_EQ(ReadTextFile(path_.c_str(), buffer.data(), buffer.size()), "one\ntwo\nthree");
  std::ofstream(path_) << "1\n234";
  FakedReads() = {};
  FakedReads().most = 3;
  EXPECT_EQ(ReadTextFile(path_.c_str(), buffer.data(), buffer.size()), "1\n234");
  EXPECT_EQ(FakedReads().calls, 3);  // the last one finds the end
}

TEST_F(TextFileTest, EmptyLineIsAWholeText) {
  std::ofstream(path_) << "\n";
  std::array<char, 16> buffer;
  EXPECT_EQ(ReadTextFile(path_.c_str(), buffer.data(), buffer.size()), "\n");
  EXPECT_EQ(FakedReads().calls, 1);
}

TEST_F(TextFileTest, InterruptedReadIsRepeated) {
  std::array<char, 16> buffer;
  FakedReads().errors = {EINTR, EINTR};
  EXPECT_EQ(ReadTextFile(path_.c_str(), buffer.data(), buffer.size()), "a text");
}

// What precedes the buffer is not the end of a line of the text.
TEST_F(TextFileTest, InterruptedReadIsRepeatedBehindANewline) {
  std::array<char, 17> buffer{'\n'};
  FakedReads().errors = {EINTR};
  EXPECT_EQ(ReadTextFile(path_.c_str(), buffer.data() + 1, buffer.size() - 1), "a text");
}

TEST_F(TextFileTest, FullBufferIsNotReadInto) {
  std::array<char, 3> buffer;
  EXPECT_EQ(ReadTextFile(path_.c_str(), buffer.data(), buffer.size()), "a t");
  EXPECT_EQ(FakedReads().calls, 1);
}

TEST_F(TextFileTest, ReadThatFailsIsNotRepeated) {
  std::array<char, 16> buffer;
  FakedReads().errors = {EIO};
  EXPECT_FALSE(ReadTextFile(path_.c_str(), buffer.data(), buffer.size()));
  EXPECT_EQ(FakedReads().calls, 1);
}

TEST_F(TextFileTest, DescriptorZeroIsOpen) {
  const Outcome outcome = RunApart([this] {
    close(0);
    errno = EINTR;
    if (FileDescriptor(AT_FDCWD, path_.c_str()).get() != 0) {
      throw std::runtime_error("another descriptor");
    }
    if (fcntl(0, F_GETFD) != -1) {
      throw std::runtime_error("it was not closed");
    }
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

TEST_F(TextFileTest, DescriptorClosesItselfUnlessReleased) {
  int kept = -1;
  int closed = -1;
  {
    FileDescriptor released(AT_FDCWD, path_.c_str());
    const FileDescriptor scoped(AT_FDCWD, path_.c_str());
    closed = scoped.get();
    kept = released.release();
    EXPECT_FALSE(released.is_open());
  }
  EXPECT_EQ(fcntl(closed, F_GETFD), -1);
  EXPECT_EQ(fcntl(kept, F_GETFD), FD_CLOEXEC);
  close(kept);
}

TEST_F(TextFileTest, DescriptorIsMoved) {
  FileDescriptor first(AT_FDCWD, path_.c_str());
  const int number = first.get();
  FileDescriptor second(std::move(first));
  EXPECT_EQ(second.get(), number);
  FileDescriptor third;
  EXPECT_FALSE(third.is_open());
  third = std::move(second);
  EXPECT_EQ(third.get(), number);
  EXPECT_EQ(fcntl(number, F_GETFD), FD_CLOEXEC);
}

TEST_F(TextFileTest, OnlyDirectoriesOpenAsDirectories) {
  const FileDescriptor directory = FileDescriptor::OfDirectory("/");
  EXPECT_TRUE(directory.is_open());
  EXPECT_EQ(fcntl(directory.get(), F_GETFD), FD_CLOEXEC);
  EXPECT_FALSE(FileDescriptor::OfDirectory(path_.c_str()).is_open());
  EXPECT_EQ(errno, ENOTDIR);
}

TEST_F(TextFileTest, InterruptedOpenOfADirectoryIsRepeated) {
  InterruptOpens(2);
  EXPECT_TRUE(FileDescriptor::OfDirectory("/").is_open());
  errno = EINTR;
  EXPECT_TRUE(FileDescriptor::OfDirectory("/").is_open());
}

TEST(FindLineTest, RestOfFirstMatchingLineIsReturned) {
  EXPECT_EQ(FindLine("a 1\nb 2\n", "b "), "2");
  EXPECT_EQ(FindLine("b 1\nb 2\n", "b "), "1");
  EXPECT_EQ(FindLine("b \n", "b "), "");
  EXPECT_EQ(FindLine("ab 1\nb 2\n", "b "), "2");
}

TEST(FindLineTest, TextElsewhereOnALineDoesNotMatch) {
  EXPECT_EQ(FindLine("total_file 1\n", "file "), std::nullopt);
  EXPECT_EQ(FindLine("file_dirty 1\n", "file "), std::nullopt);
  EXPECT_EQ(FindLine("fi\nle 1\n", "file "), std::nullopt);
  EXPECT_EQ(FindLine("", "file "), std::nullopt);
}

TEST(FindLineTest, LineWithoutNewlineDoesNotMatch) {
  EXPECT_EQ(FindLine("a 1\nfile 12", "file "), std::nullopt);
}

TEST(TakeNumberTest, LeadingDigitsAreRemoved) {
  std::string_view text = "42 rest";
  EXPECT_EQ(TakeNumber(text), 42U);
  EXPECT_EQ(text, " rest");
}

TEST(TakeNumberTest, DigitsBehindTheTextAreNotRead) {
  std::string_view text("4242", 2);
  EXPECT_EQ(TakeNumber(text), 42U);
  EXPECT_EQ(text, "");
}

TEST(TakeNumberTest, TextWithoutLeadingNumberIsUnchanged) {
  for (const char* const original : {"", " 42", "-1", "+1", "x", "18446744073709551616"}) {
    std::string_view text = original;
    EXPECT_FALSE(TakeNumber(text)) << original;
    EXPECT_EQ(text, original);
  }
}

}  // namespace
}  // namespace kestrel::tests

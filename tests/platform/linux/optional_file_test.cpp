#include "platform/linux/optional_file.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/linux/path_buffer.h"
#include "platform/linux/text_file.h"
#include "tests/platform/linux/machine_tree.h"

namespace kestrel::tests {
namespace {

using platform::FileExists;
using platform::MeansAbsent;
using platform::ReadOptionalFile;
using platform::ReadOptionalNumber;

TEST(MeansAbsentTest, MissingAndForbiddenFilesAreAbsent) {
  for (const int error : {ENOENT, ENOTDIR, ENODEV, EACCES, EPERM}) {
    EXPECT_TRUE(MeansAbsent(error)) << error;
  }
}

TEST(MeansAbsentTest, OtherErrorsDoNotMeanAbsence) {
  for (const int error : {EMFILE, ENFILE, ENOMEM, EIO, EINTR, EAGAIN, ELOOP, EISDIR, EINVAL}) {
    EXPECT_FALSE(MeansAbsent(error)) << error;
  }
}

class OptionalFileTest : public testing::Test {
 protected:
  // Returns the text of "/file", at most 8 bytes of it, or nullopt.
  std::optional<std::string> Text() {
    std::array<char, 8> buffer;
    const auto text =
        ReadOptionalFile(tree_.root(), "/file", buffer.data(), buffer.size(), failed_);
    return text ? std::optional<std::string>(*text) : std::nullopt;
  }

  std::optional<std::uint64_t> Number(const std::string& text) {
    tree_.Write("/file", text);
    return ReadOptionalNumber(tree_.root(), "/file", failed_);
  }

  MachineTree tree_;
  bool failed_ = false;
};

// A path of the root directory, after which no name fits.
const std::string kLongestDirectory(platform::PathBuffer::kCapacity - 1, '/');

TEST_F(OptionalFileTest, TextIsReadUpToSizeOfBuffer) {
  tree_.Write("/file", "text\n");
  EXPECT_EQ(Text(), "text\n");
  tree_.Write("/file", "a longer text\n");
  EXPECT_EQ(Text(), "a longer");
  EXPECT_FALSE(failed_);
}

TEST_F(OptionalFileTest, MissingFileIsNoFailure) {
  EXPECT_EQ(Text(), std::nullopt);
  EXPECT_FALSE(failed_);
}

TEST_F(OptionalFileTest, OverlongPathIsNoFailure) {
  std::array<char, 8> buffer;
  const std::string directory(5000, '/');
  EXPECT_EQ(ReadOptionalFile(directory, "/file", buffer.data(), buffer.size(), failed_),
            std::nullopt);
  EXPECT_EQ(ReadOptionalFile(kLongestDirectory, "/file", buffer.data(), buffer.size(), failed_),
            std::nullopt);
  EXPECT_FALSE(FileExists(kLongestDirectory, "/file", failed_));
  EXPECT_FALSE(failed_);
}

TEST_F(OptionalFileTest, FileThatCannotBeReadFails) {
  tree_.MakeUnreadable("/file");
  EXPECT_EQ(Text(), std::nullopt);
  EXPECT_TRUE(failed_);
}

// A loop of symbolic links.
TEST_F(OptionalFileTest, FileThatCannotBeOpenedFails) {
  std::filesystem::create_symlink("file", tree_.root() + "/file");
  EXPECT_EQ(Text(), std::nullopt);
  EXPECT_TRUE(failed_);
}

TEST_F(OptionalFileTest, ExistenceIsReported) {
  EXPECT_FALSE(FileExists(tree_.root(), "/file", failed_));
  tree_.Write("/file", "");
  errno = EIO;  // as an earlier call may leave it
  EXPECT_TRUE(FileExists(tree_.root(), "/file", failed_));
  EXPECT_FALSE(FileExists(tree_.root() + "/file", "/below", failed_));
  EXPECT_FALSE(FileExists(std::string(5000, '/'), "/file", failed_));
  EXPECT_FALSE(failed_);
  std::filesystem::create_symlink("loop", tree_.root() + "/loop");
  EXPECT_FALSE(FileExists(tree_.root(), "/loop", failed_));
  EXPECT_TRUE(failed_);
}

TEST_F(OptionalFileTest, PathWithBaseIsRelativeToIt) {
  tree_.Write("/below/file", "5\n");
  const auto base = platform::FileDescriptor::OfDirectory(tree_.root().c_str());
  EXPECT_EQ(ReadOptionalNumber("/below", "/file", failed_, base.get()), 5U);
  EXPECT_EQ(ReadOptionalNumber("", "/file", failed_, base.get()), std::nullopt);
  EXPECT_TRUE(FileExists("/below", "/file", failed_, base.get()));
  EXPECT_TRUE(FileExists("", "/below", failed_, base.get()));
  EXPECT_FALSE(FileExists("", "/file", failed_, base.get()));
  EXPECT_FALSE(failed_);
}

TEST_F(OptionalFileTest, SuccessAfterFailureKeepsFailure) {
  failed_ = true;
  EXPECT_EQ(Number("5\n"), 5U);
  EXPECT_EQ(Text(), "5\n");
  EXPECT_TRUE(FileExists(tree_.root(), "/file", failed_));
  EXPECT_TRUE(failed_);
}

TEST_F(OptionalFileTest, OnlyOneNumberAndNewlineIsNumber) {
  EXPECT_EQ(Number("0\n"), 0U);
  EXPECT_EQ(Number("18446744073709551615\n"), 18446744073709551615U);
  for (const std::string text : {"", "\n", "max\n", "-1\n", " 5\n", "5 \n", "5", "5\n6\n", "0x10\n",
                                 "18446744073709551616\n"}) {
    EXPECT_EQ(Number(text), std::nullopt) << text;
  }
  EXPECT_FALSE(failed_);
}

}  // namespace
}  // namespace kestrel::tests

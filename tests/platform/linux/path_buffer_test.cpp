#include "platform/linux/path_buffer.h"

#include <gtest/gtest.h>

#include <string>

namespace kestrel::tests {
namespace {

using platform::PathBuffer;

TEST(PathBufferTest, LongestPathLeavesRoomForTerminatingNul) {
  constexpr std::size_t kLongest = PathBuffer::kCapacity - 1;
  PathBuffer path;
  EXPECT_TRUE(path.Append(std::string(kLongest, 'x')));
  EXPECT_EQ(path.view().size(), kLongest);
  EXPECT_EQ(path.c_str()[kLongest], '\0');
}

TEST(PathBufferTest, PieceThatDoesNotFitLeavesPathUnchanged) {
  PathBuffer path;
  EXPECT_TRUE(path.Append("/a"));
  EXPECT_FALSE(path.Append(std::string(PathBuffer::kCapacity - 2, 'x')));
  EXPECT_STREQ(path.c_str(), "/a");
  EXPECT_TRUE(path.Append(std::string(PathBuffer::kCapacity - 3, 'x')));
  EXPECT_FALSE(path.Append("x"));
  EXPECT_TRUE(path.Append(""));
}

TEST(PathBufferTest, TruncateKeepsTheBeginning) {
  PathBuffer path;
  EXPECT_EQ(path.view(), "");
  EXPECT_TRUE(path.Append("/a/b"));
  path.Truncate(2);
  EXPECT_EQ(path.view(), "/a");
  EXPECT_STREQ(path.c_str(), "/a");
}

}  // namespace
}  // namespace kestrel::tests

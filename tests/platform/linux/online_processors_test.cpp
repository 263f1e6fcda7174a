#include "platform/linux/online_processors.h"

#include <gtest/gtest.h>

namespace kestrel::tests {
namespace {

using platform::CountListedProcessors;
using platform::IsOneProcessorsLine;
using platform::IsProcessorsLine;

TEST(OnlineProcessorsTest, NumbersAndRangesAreCounted) {
  EXPECT_EQ(CountListedProcessors("0\n"), 1U);
  EXPECT_EQ(CountListedProcessors("0-1\n"), 2U);
  EXPECT_EQ(CountListedProcessors("0-3,5,8-11\n"), 9U);
  EXPECT_EQ(CountListedProcessors("3,5\n"), 2U);
  EXPECT_EQ(CountListedProcessors("0-8191\n"), 8192U);
  EXPECT_EQ(CountListedProcessors("0-999999\n"), 1'000'000U);
}

TEST(OnlineProcessorsTest, TruncatedListHasNoCount) {
  for (const char* const list : {"", "0", "0-", "0-1", "0-3,", "0-3,5"}) {
    EXPECT_FALSE(CountListedProcessors(list)) << list;
  }
}

TEST(OnlineProcessorsTest, MalformedListHasNoCount) {
  for (const char* const list :
       {"\n", "x\n", "-1\n", "0-x\n", "0 - 3\n", "0-3 \n", "0-3\n\n", "0-3;5\n", "0,,1\n", "3-0\n",
        "0-3,2\n", "1,1\n", "0-1000000\n", "18446744073709551615\n"}) {
    EXPECT_FALSE(CountListedProcessors(list)) << list;
  }
}

TEST(OnlineProcessorsTest, LinesOfProcStatAreRecognized) {
  EXPECT_TRUE(IsProcessorsLine("cpu  2255 34 2290 22625563"));
  EXPECT_TRUE(IsProcessorsLine("cpu0 1132 34 1441 11311718"));
  EXPECT_FALSE(IsProcessorsLine("intr 114930548 113199788"));
  EXPECT_FALSE(IsProcessorsLine(""));
  EXPECT_TRUE(IsOneProcessorsLine("cpu0 1132 34 1441 11311718"));
  EXPECT_TRUE(IsOneProcessorsLine("cpu191 0 0 0 0"));
  EXPECT_TRUE(IsOneProcessorsLine("cpu0"));
  EXPECT_TRUE(IsOneProcessorsLine("cpu9 0"));
  EXPECT_FALSE(IsOneProcessorsLine("gpu0 0"));
  EXPECT_FALSE(IsOneProcessorsLine("cpu/ 0"));
  EXPECT_FALSE(IsOneProcessorsLine("cpu: 0"));
  EXPECT_FALSE(IsOneProcessorsLine("cpu  2255 34 2290 22625563"));
  EXPECT_FALSE(IsOneProcessorsLine("cpu"));
  EXPECT_FALSE(IsOneProcessorsLine("intr 114930548 113199788"));
}

}  // namespace
}  // namespace kestrel::tests

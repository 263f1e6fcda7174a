#include "platform/linux/statm.h"

#include <gtest/gtest.h>

namespace kestrel::tests {
namespace {

using platform::ParseResidentPages;

TEST(StatmTest, ResidentSetIsTheSecondNumber) {
  EXPECT_EQ(ParseResidentPages("1803 1067 868 12 0 402 0\n"), 1067U);
  EXPECT_EQ(ParseResidentPages("0 0 0 0 0 0 0\n"), 0U);
  EXPECT_EQ(ParseResidentPages("1 18446744073709551615 0"), 18446744073709551615U);
}

TEST(StatmTest, MalformedTextHasNoResidentSet) {
  for (const char* const text :
       {"", "\n", " ", " 1067 5", "1803", "1803 ", "1803\n1067", "x 1067", "1803 x", "1803  1067",
        "1803x1067 868", "-1 5", "1 -5", "1 18446744073709551616"}) {
    EXPECT_FALSE(ParseResidentPages(text)) << text;
  }
}

TEST(StatmTest, TextTruncatedInTheSecondNumberHasNoResidentSet) {
  for (const char* const text : {"1803 1", "1803 106", "1803 1067", "1803 1067\n", "1803 1067x"}) {
    EXPECT_FALSE(ParseResidentPages(text)) << text;
  }
}

}  // namespace
}  // namespace kestrel::tests

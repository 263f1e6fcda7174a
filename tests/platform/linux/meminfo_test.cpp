#include "platform/linux/meminfo.h"

#include <gtest/gtest.h>

#include <string>

namespace kestrel::tests {
namespace {

using platform::ParseKibibytes;
using platform::ParseMeminfo;

// From a machine of two processors and 24 GiB under Linux 6.18, shortened where nothing is read.
constexpr const char* kText =
    "MemTotal:       24681488 kB\n"
    "MemFree:        23977520 kB\n"
    "MemAvailable:   24235660 kB\n"
    "Buffers:           15356 kB\n"
    "Cached:           471264 kB\n"
    "SwapCached:            0 kB\n"
    "SwapTotal:       1048572 kB\n"
    "SwapFree:        1048320 kB\n"
    "CommitLimit:    13389316 kB\n"
    "Committed_AS:     284112 kB\n"
    "VmallocTotal:   34359738367 kB\n"
    "HugePages_Total:       0\n"
    "Hugepagesize:       2048 kB\n";

std::string Replaced(const std::string& what, const std::string& with) {
  std::string text = kText;
  const std::size_t place = text.find(what);
  EXPECT_NE(place, std::string::npos);
  return text.replace(place, what.size(), with);
}

TEST(ParseKibibytesTest, FigureIsReturnedInBytes) {
  EXPECT_EQ(ParseKibibytes("      512 kB"), 512U * 1024);
  EXPECT_EQ(ParseKibibytes("\t 0 kB"), 0U);
  EXPECT_EQ(ParseKibibytes("18014398509481983 kB"), 18446744073709550592ULL);
}

TEST(ParseKibibytesTest, OtherTextIsRefused) {
  for (const char* const text : {"", " ", " kB", "x kB", "X5 kB", "-1 kB", "1", "1 MB", "1kB",
                                 "1 kB ", "18014398509481984 kB", "18446744073709551616 kB"}) {
    EXPECT_FALSE(ParseKibibytes(text)) << text;
  }
}

TEST(MeminfoTest, FiguresAreReadInBytes) {
  const auto meminfo = ParseMeminfo(kText);
  ASSERT_TRUE(meminfo);
  EXPECT_EQ(meminfo->total, 24681488ULL * 1024);
  EXPECT_EQ(meminfo->available, 24235660ULL * 1024);
  EXPECT_EQ(meminfo->swap_free, 1048320ULL * 1024);
  EXPECT_EQ(meminfo->commit_limit, 13389316ULL * 1024);
  EXPECT_EQ(meminfo->committed, 284112ULL * 1024);
}

TEST(MeminfoTest, FiguresAreFoundInAnyOrder) {
  const auto meminfo = ParseMeminfo(
      "Committed_AS: 5 kB\nCommitLimit: 4 kB\nSwapFree: 3 kB\nMemAvailable: 2 kB\nMemTotal: 9 "
      "kB\n");
  ASSERT_TRUE(meminfo);
  EXPECT_EQ(meminfo->total, 9U * 1024);
  EXPECT_EQ(meminfo->committed, 5U * 1024);
}

TEST(MeminfoTest, MissingMemoryFigureIsRefused) {
  for (const char* const name : {"MemTotal:", "MemAvailable:", "SwapFree:"}) {
    EXPECT_FALSE(ParseMeminfo(Replaced(name, "Other:"))) << name;
  }
}

// Sandboxes that implement the kernel's interface in user space leave them out.
TEST(MeminfoTest, MissingCommitFiguresGiveNoLimit) {
  const auto without_limit = ParseMeminfo(Replaced("CommitLimit:", "Other:"));
  ASSERT_TRUE(without_limit);
  EXPECT_EQ(without_limit->commit_limit, 18446744073709551615ULL);
  const auto without_sum = ParseMeminfo(Replaced("Committed_AS:", "Other:"));
  ASSERT_TRUE(without_sum);
  EXPECT_EQ(without_sum->committed, 0U);
  EXPECT_FALSE(ParseMeminfo(Replaced("13389316 kB", "many kB")));
}

TEST(MeminfoTest, NameOnlyMatchesWholeAtStartOfLine) {
  EXPECT_FALSE(ParseMeminfo(Replaced("MemTotal:", "XMemTotal:")));
  EXPECT_FALSE(ParseMeminfo(Replaced("MemTotal:", "MemTotalX:")));
  EXPECT_FALSE(ParseMeminfo(Replaced("MemTotal:", " MemTotal:")));
  EXPECT_FALSE(ParseMeminfo(Replaced("MemTotal:", "MemTotal")));
}

TEST(MeminfoTest, MalformedFigureIsRefused) {
  for (const char* const figure :
       {"", " ", "x", "-1 kB", "+1 kB", "1", "1 MB", "1 kB ", "1kB", "1 kB x", "0x10 kB", "1.5 kB",
        "18446744073709551616 kB", "18446744073709551615 kB"}) {
    EXPECT_FALSE(ParseMeminfo(Replaced("       24681488 kB", figure))) << figure;
  }
}

TEST(MeminfoTest, LargestFigureThatFitsIsRead) {
  const auto meminfo = ParseMeminfo(Replaced("24681488 kB", "18014398509481983 kB"));
  ASSERT_TRUE(meminfo);
  EXPECT_EQ(meminfo->total, 18446744073709550592ULL);
}

TEST(MeminfoTest, MoreAvailableThanTotalIsRefused) {
  EXPECT_FALSE(ParseMeminfo(Replaced("24235660 kB", "24681489 kB")));
  EXPECT_TRUE(ParseMeminfo(Replaced("24235660 kB", "24681488 kB")));
}

TEST(MeminfoTest, TextTruncatedInsideAFigureIsRefused) {
  const std::string text = kText;
  const std::size_t last_figure = text.find("284112") + 3;
  EXPECT_FALSE(ParseMeminfo(text.substr(0, last_figure)));
}

TEST(MeminfoTest, EmptyTextIsRefused) { EXPECT_FALSE(ParseMeminfo("")); }

}  // namespace
}  // namespace kestrel::tests

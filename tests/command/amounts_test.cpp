#include "command/amounts.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrel::tests {
namespace {

using command::ParseInterval;
using command::ParseNumber;
using command::ParseSize;
using command::SizeText;

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

TEST(AmountsTest, SizesAreReadWithEveryUnit) {
  const std::vector<std::pair<const char*, std::uint64_t>> sizes = {
      {"0", 0},
      {"17", 17},
      {"17B", 17},
      {"1K", 1024},
      {"1KiB", 1024},
      {"1kb", 1000},
      {"1kB", 1000},
      {"3Kib", 3072},
      {"800MB", 800'000'000},
      {"1.5G", 1'610'612'736},
      {"24GiB", 25'769'803'776},
      {"24gib", 25'769'803'776},
      {"2T", 2'199'023'255'552},
      {"1TB", 1'000'000'000'000},
      {"1PB", 1'000'000'000'000'000},
      {"18446744073709551615", kMost},
      {"16383P", 16383ULL << 50U},
  };
  for (const auto& [text, bytes] : sizes) {
    EXPECT_EQ(ParseSize(text), bytes) << text;
  }
}

TEST(AmountsTest, OnlyTheTextItselfIsRead) {
  const std::string_view text = "12.5K";
  EXPECT_EQ(ParseSize(text.substr(0, 1)), 1U);
  EXPECT_EQ(ParseSize(text.substr(0, 2)), 12U);
  EXPECT_EQ(ParseSize(text.substr(0, 4)), 13U);
}

TEST(AmountsTest, PartOfAByteCountsAsAByte) {
  EXPECT_EQ(ParseSize("0.5"), 1U);
  EXPECT_EQ(ParseSize("0.1K"), 103U);  // 102.4
  EXPECT_EQ(ParseSize("0.25K"), 256U);
  EXPECT_EQ(ParseSize("0.000K"), 0U);
  EXPECT_EQ(ParseSize("1.0009765625K"), 1025U);
  EXPECT_EQ(ParseSize("1.00097656250000000000000000001K"), 1026U);
}

TEST(AmountsTest, TextsThatAreNoSizeAreRefused) {
  for (const char* text : {"",       " 1",
                           "1 ",     "-1",
                           "+1",     ".5",
                           "1.",     "1.x",
                           "G",      "1X",
                           "1GiBs",  "1Ki",
                           "1 G",    "0x10",
                           "1e3",    "18446744073709551616",
                           "16384P", "18446744073709551615.5",
                           "1./",    "1.:",
                           "1.5-",   "1E",
                           "1 KiB",  "1KX",
                           "1BB",    "1ib"}) {
    EXPECT_EQ(ParseSize(text), std::nullopt) << text;
  }
}

TEST(AmountsTest, IntervalsAreReadWithEveryUnit) {
  using std::chrono::milliseconds;
  EXPECT_EQ(ParseInterval("1"), milliseconds(1000));
  EXPECT_EQ(ParseInterval("0.25s"), milliseconds(250));
  EXPECT_EQ(ParseInterval("500ms"), milliseconds(500));
  EXPECT_EQ(ParseInterval("2m"), milliseconds(120'000));
  EXPECT_EQ(ParseInterval("86400"), milliseconds(86'400'000));
  EXPECT_EQ(ParseInterval("0.1ms"), milliseconds(1));
}

TEST(AmountsTest, TextsThatAreNoIntervalAreRefused) {
  for (const char* text : {"", "0", "0ms", "-1s", "1h", "s", "86401s", "86400.001s", "1441m",
                           "99999999999999999999ms", "999999999999999999m", "1M", "1S", "1sm"}) {
    EXPECT_EQ(ParseInterval(text), std::nullopt) << text;
  }
}

TEST(AmountsTest, NumbersAreReadUpToTheirBound) {
  EXPECT_EQ(ParseNumber("0", 7), 0U);
  EXPECT_EQ(ParseNumber("7", 7), 7U);
  for (const char* text : {"8", "-1", "", "1x", " 1", "1.0"}) {
    EXPECT_EQ(ParseNumber(text, 7), std::nullopt) << text;
  }
}

TEST(AmountsTest, SizesAreWrittenWithTheLargestUnitThatGivesOneOrMore) {
  const std::vector<std::pair<std::uint64_t, const char*>> texts = {
      {0, "0 B"},
      {1023, "1023 B"},
      {1024, "1.00 KiB"},
      {1536, "1.50 KiB"},
      {1024 * 1024 - 1, "1023.99 KiB"},
      {1024 * 1024, "1.00 MiB"},
      {1024 * 1024 + 1024 * 1024 / 10, "1.09 MiB"},
      {1024 * 1024 + 1024 * 1024 / 10 + 1, "1.10 MiB"},
      {1 << 30, "1.00 GiB"},
      {(1 << 30) + (1 << 24), "1.01 GiB"},
      {kMost, "16383.99 PiB"},
  };
  for (const auto& [bytes, text] : texts) {
    EXPECT_EQ(SizeText(bytes), text);
  }
}

}  // namespace
}  // namespace kestrel::tests

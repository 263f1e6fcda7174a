#include "harness/byte_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace kestrel::tests {
namespace {

constexpr std::uint64_t kHuge = std::numeric_limits<std::uint64_t>::max();

TEST(BytesToStrTest, ZeroHasNoDecimals) {
  EXPECT_EQ(BytesToStr(0, false), "0 Bytes");
  EXPECT_EQ(BytesToStr(0, true), "0 Bytes");
}

TEST(BytesToStrTest, BytesHaveTwoDecimals) {
  EXPECT_EQ(BytesToStr(1, false), "1.00 Bytes");
  EXPECT_EQ(BytesToStr(999, true), "999.00 Bytes");
  EXPECT_EQ(BytesToStr(1023, false), "1023.00 Bytes");
}

TEST(BytesToStrTest, BinaryUnitsArePowersOf1024) {
  EXPECT_EQ(BytesToStr(1536, false), "1.50 KiB");
  EXPECT_EQ(BytesToStr(1572864, false), "1.50 MiB");
  EXPECT_EQ(BytesToStr(17179869184, false), "16.00 GiB");
  EXPECT_EQ(BytesToStr(3298534883328, false), "3.00 TiB");
}

TEST(BytesToStrTest, DecimalUnitsArePowersOf1000) {
  EXPECT_EQ(BytesToStr(1536, true), "1.54 KB");
  EXPECT_EQ(BytesToStr(2500000, true), "2.50 MB");
  EXPECT_EQ(BytesToStr(12340000000, true), "12.34 GB");
  EXPECT_EQ(BytesToStr(7000000000000, true), "7.00 TB");
}

TEST(BytesToStrTest, AmountBeyondTheLastUnitStaysInIt) {
  EXPECT_EQ(BytesToStr(1125899906842624, false), "1024.00 TiB");
  EXPECT_EQ(BytesToStr(2251799813685248, false), "2048.00 TiB");
  EXPECT_EQ(BytesToStr(5000000000000000, true), "5000.00 TB");
}

TEST(BytesToStrTest, ErrorValuePrintsAsHugeAmount) {
  EXPECT_EQ(BytesToStr(kHuge, true), "18446744.07 TB");
  EXPECT_EQ(BytesToStr(kHuge, false), "16777216.00 TiB");
}

TEST(BytesToStrTest, QuotientThatRoundsUpKeepsItsUnit) {
  EXPECT_EQ(BytesToStr(1048575, false), "1024.00 KiB");
  EXPECT_EQ(BytesToStr(999999, true), "1000.00 KB");
}

}  // namespace
}  // namespace kestrel::tests

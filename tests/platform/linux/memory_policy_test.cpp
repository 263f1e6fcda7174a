#include "platform/linux/memory_policy.h"

#include <gtest/gtest.h>

namespace kestrel::platform {
namespace {

// 16 total, 6 available, 4 of swap, 12 may be committed and 5 are.
constexpr Meminfo kMeminfo = {16, 6, 4, 12, 5};

TEST(MemoryPolicyTest, OnlyModeTwoIsStrict) {
  EXPECT_TRUE(IsStrictOvercommit("2\n"));
  EXPECT_TRUE(IsStrictOvercommit("2"));
  for (const char* const text : {"0\n", "1\n", "", "\n", "22\n", "-2\n", " 2\n", "x"}) {
    EXPECT_FALSE(IsStrictOvercommit(text)) << text;
  }
}

TEST(MemoryPolicyTest, BeyondTheRamThereIsTheSwapLeft) {
  const MemoryStatus status = ToMemoryStatus(kMeminfo, false);
  EXPECT_EQ(status.total_physical, 16U);
  EXPECT_EQ(status.available_physical, 6U);
  EXPECT_EQ(status.committable, 4U);
}

TEST(MemoryPolicyTest, UnderStrictOvercommitThereIsTheRestOfTheCommitLimit) {
  const MemoryStatus status = ToMemoryStatus(kMeminfo, true);
  EXPECT_EQ(status.total_physical, 16U);
  EXPECT_EQ(status.available_physical, 6U);
  EXPECT_EQ(status.committable, 1U);
}

TEST(MemoryPolicyTest, UnderStrictOvercommitTheCommitLimitBoundsTheRam) {
  const MemoryStatus status = ToMemoryStatus({16, 6, 4, 12, 9}, true);
  EXPECT_EQ(status.available_physical, 3U);
  EXPECT_EQ(status.committable, 0U);
}

TEST(MemoryPolicyTest, MoreCommittedThanTheLimitLeavesNothing) {
  const MemoryStatus status = ToMemoryStatus({16, 6, 4, 12, 13}, true);
  EXPECT_EQ(status.available_physical, 0U);
  EXPECT_EQ(status.committable, 0U);
}

}  // namespace
}  // namespace kestrel::platform

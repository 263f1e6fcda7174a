// How the room of memory groups and the machine's figures become one memory status.

#include <gtest/gtest.h>

#include <cstdint>

#include "platform/linux/memory_policy.h"

namespace kestrel::platform {
namespace {

constexpr std::uint64_t kUnlimited = CgroupRoom::kUnlimited;

Meminfo Machine() {
  Meminfo meminfo;
  meminfo.total = 16000;
  meminfo.available = 10000;
  meminfo.swap_free = 2000;
  meminfo.commit_limit = 12000;
  meminfo.committed = 5000;
  return meminfo;
}

void ExpectStatus(const MemoryStatus& status, std::uint64_t available, std::uint64_t committable) {
  EXPECT_EQ(status.total_physical, 16000U);
  EXPECT_EQ(status.available_physical, available);
  EXPECT_EQ(status.committable, committable);
}

TEST(CgroupPolicyTest, WithoutLimitsTheMachinesFiguresStand) {
  ExpectStatus(ToMemoryStatus(Machine(), false), 10000, 2000);
  ExpectStatus(ToMemoryStatus(Machine(), false, {}), 10000, 2000);
}

TEST(CgroupPolicyTest, TheSmallerOfMachineAndGroupIsAvailable) {
  ExpectStatus(ToMemoryStatus(Machine(), false, {9999, kUnlimited, kUnlimited}), 9999, 2000);
  ExpectStatus(ToMemoryStatus(Machine(), false, {10000, kUnlimited, kUnlimited}), 10000, 2000);
  ExpectStatus(ToMemoryStatus(Machine(), false, {10001, kUnlimited, kUnlimited}), 10000, 2000);
  ExpectStatus(ToMemoryStatus(Machine(), false, {0, kUnlimited, kUnlimited}), 0, 2000);
}

TEST(CgroupPolicyTest, TheGroupsSwapLimitCapsTheSwapLeft) {
  ExpectStatus(ToMemoryStatus(Machine(), false, {4000, 1999, kUnlimited}), 4000, 1999);
  ExpectStatus(ToMemoryStatus(Machine(), false, {4000, 2001, kUnlimited}), 4000, 2000);
  ExpectStatus(ToMemoryStatus(Machine(), false, {kUnlimited, 0, kUnlimited}), 10000, 0);
}

TEST(CgroupPolicyTest, ALimitOnMemoryAndSwapTogetherLeavesSwapBeyondTheRam) {
  ExpectStatus(ToMemoryStatus(Machine(), false, {4000, kUnlimited, 5000}), 4000, 1000);
  ExpectStatus(ToMemoryStatus(Machine(), false, {4000, kUnlimited, 4000}), 4000, 0);
  ExpectStatus(ToMemoryStatus(Machine(), false, {4000, kUnlimited, 9000}), 4000, 2000);
}

// Swap was used while the machine was short of RAM, and now counts against the limit.
TEST(CgroupPolicyTest, ALimitOnMemoryAndSwapTogetherMayBeTheTighterOne) {
  ExpectStatus(ToMemoryStatus(Machine(), false, {4000, kUnlimited, 3000}), 3000, 0);
}

// Version 1 lets the group swap when the machine is short, up to the limit on both.
TEST(CgroupPolicyTest, TheMachineMayBeTighterThanALimitOnBoth) {
  ExpectStatus(ToMemoryStatus(Machine(), false, {11000, kUnlimited, 11000}), 10000, 1000);
}

TEST(CgroupPolicyTest, AFullGroupThatDoesNotSwapHasNothingBeyondItsRam) {
  ExpectStatus(ToMemoryStatus(Machine(), false, {4000, kUnlimited, kUnlimited, false}), 4000, 0);
  ExpectStatus(ToMemoryStatus(Machine(), true, {4000, kUnlimited, kUnlimited, false}), 4000, 0);
}

TEST(CgroupPolicyTest, AFullMachineSwapsWhateverItsGroupsDo) {
  ExpectStatus(ToMemoryStatus(Machine(), false, {10000, kUnlimited, kUnlimited, false}), 10000,
               2000);
}

TEST(CgroupPolicyTest, StrictOvercommitWithoutLimitsPromisesTheRestOfTheCommitLimit) {
  ExpectStatus(ToMemoryStatus(Machine(), true), 7000, 0);
  Meminfo machine = Machine();
  machine.committed = 0;
  ExpectStatus(ToMemoryStatus(machine, true), 10000, 2000);
  machine.commit_limit = 20000;  // more than there is
  ExpectStatus(ToMemoryStatus(machine, true), 10000, 10000);
}

TEST(CgroupPolicyTest, StrictOvercommitAlsoBoundsAGroup) {
  ExpectStatus(ToMemoryStatus(Machine(), true, {8000, kUnlimited, kUnlimited}), 7000, 0);
  ExpectStatus(ToMemoryStatus(Machine(), true, {6500, kUnlimited, kUnlimited}), 6500, 500);
  ExpectStatus(ToMemoryStatus(Machine(), true, {6500, 100, kUnlimited}), 6500, 100);
}

TEST(CgroupPolicyTest, AFullGroupHasOnlySwapWhateverMayBeCommitted) {
  ExpectStatus(ToMemoryStatus(Machine(), true, {1000, kUnlimited, kUnlimited}), 1000, 2000);
  ExpectStatus(ToMemoryStatus(Machine(), true, {1000, kUnlimited, 1500}), 1000, 500);
  ExpectStatus(ToMemoryStatus(Machine(), true, {0, 0, kUnlimited}), 0, 0);
}

TEST(CgroupPolicyTest, MoreCommittedThanTheLimitLeavesNothing) {
  Meminfo machine = Machine();
  machine.committed = machine.commit_limit + 1;
  ExpectStatus(ToMemoryStatus(machine, true, {1000, kUnlimited, kUnlimited}), 0, 0);
}

TEST(CgroupPolicyTest, NoFigureWrapsAround) {
  for (const std::uint64_t physical : {std::uint64_t{0}, std::uint64_t{5000}, kUnlimited}) {
    for (const std::uint64_t swap : {std::uint64_t{0}, std::uint64_t{5000}, kUnlimited}) {
      for (const std::uint64_t together : {std::uint64_t{0}, std::uint64_t{5000}, kUnlimited}) {
        for (const bool strict : {false, true}) {
          const auto status = ToMemoryStatus(Machine(), strict, {physical, swap, together});
          EXPECT_LE(status.available_physical, 10000U);
          EXPECT_LE(status.committable, 2000U);
          EXPECT_LE(status.available_physical + status.committable, together);
        }
      }
    }
  }
}

}  // namespace
}  // namespace kestrel::platform

#include "platform/linux/memory_policy.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace kestrel::tests {
namespace {

using platform::CgroupRoom;
using platform::Meminfo;
using platform::MemoryLimit;
using platform::MemorySettings;
using platform::MemoryStatus;
using platform::ToMemoryStatus;

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

constexpr MemorySettings kStrict = {true, 0, true};

TEST(MemoryPolicyTest, NoLimitGivesMachinesFigures) {
  ExpectStatus(ToMemoryStatus(Machine(), {}), 10000, 2000);
  ExpectStatus(ToMemoryStatus(Machine(), {}, {}), 10000, 2000);
}

TEST(MemoryPolicyTest, SmallerOfMachineAndGroupIsAvailable) {
  ExpectStatus(ToMemoryStatus(Machine(), {}, {9999, kUnlimited, kUnlimited}), 9999, 2000);
  ExpectStatus(ToMemoryStatus(Machine(), {}, {10000, kUnlimited, kUnlimited}), 10000, 2000);
  ExpectStatus(ToMemoryStatus(Machine(), {}, {10001, kUnlimited, kUnlimited}), 10000, 2000);
  ExpectStatus(ToMemoryStatus(Machine(), {}, {0, kUnlimited, kUnlimited}), 0, 2000);
}

TEST(MemoryPolicyTest, SwapLimitOfGroupCapsSwapLeft) {
  ExpectStatus(ToMemoryStatus(Machine(), {}, {4000, 1999, kUnlimited}), 4000, 1999);
  ExpectStatus(ToMemoryStatus(Machine(), {}, {4000, 2001, kUnlimited}), 4000, 2000);
  ExpectStatus(ToMemoryStatus(Machine(), {}, {kUnlimited, 0, kUnlimited}), 10000, 0);
}

TEST(MemoryPolicyTest, CommonLimitLeavesSwapBeyondRam) {
  ExpectStatus(ToMemoryStatus(Machine(), {}, {4000, kUnlimited, 5000}), 4000, 1000);
  ExpectStatus(ToMemoryStatus(Machine(), {}, {4000, kUnlimited, 4000}), 4000, 0);
  ExpectStatus(ToMemoryStatus(Machine(), {}, {4000, kUnlimited, 9000}), 4000, 2000);
}

// Swap that was used while the machine was short of RAM counts against the common limit.
TEST(MemoryPolicyTest, CommonLimitMayBeTighterThanMemoryLimit) {
  ExpectStatus(ToMemoryStatus(Machine(), {}, {4000, kUnlimited, 3000}), 3000, 0);
}

// Version 1 lets the group swap when the machine is short, up to the limit on both.
TEST(MemoryPolicyTest, MachineMayBeTighterThanCommonLimit) {
  ExpectStatus(ToMemoryStatus(Machine(), {}, {11000, kUnlimited, 11000}), 10000, 1000);
}

TEST(MemoryPolicyTest, ProcessThatIsNotSwappedHasOnlyRam) {
  for (const bool strict : {false, true}) {
    const MemorySettings settings = {strict, 0, /*swaps=*/false};
    ExpectStatus(ToMemoryStatus(Machine(), settings, {4000, kUnlimited, kUnlimited}), 4000, 0);
  }
  ExpectStatus(ToMemoryStatus(Machine(), {false, 0, /*swaps=*/false}), 10000, 0);
}

TEST(MemoryPolicyTest, StrictOvercommitLeavesRestOfCommitLimit) {
  ExpectStatus(ToMemoryStatus(Machine(), kStrict), 7000, 0);
  Meminfo machine = Machine();
  machine.committed = 0;
  ExpectStatus(ToMemoryStatus(machine, kStrict), 10000, 2000);
  machine.committed = 1000;
  ExpectStatus(ToMemoryStatus(machine, kStrict), 10000, 1000);
}

// vm.overcommit_ratio above 100, or RAM that holds what was never committed, such as ramfs.
TEST(MemoryPolicyTest, CommitLimitAboveRamAndSwapIsBackedBySwapAlone) {
  Meminfo machine = Machine();
  machine.commit_limit = 20000;
  ExpectStatus(ToMemoryStatus(machine, kStrict), 10000, 2000);
  machine.swap_free = 0;
  ExpectStatus(ToMemoryStatus(machine, kStrict), 10000, 0);
}

TEST(MemoryPolicyTest, ReserveLowersCommitLimit) {
  const auto strict = [](std::uint64_t reserve) { return MemorySettings{true, reserve, true}; };
  ExpectStatus(ToMemoryStatus(Machine(), strict(500)), 6500, 0);
  ExpectStatus(ToMemoryStatus(Machine(), strict(7000)), 0, 0);
  ExpectStatus(ToMemoryStatus(Machine(), strict(12001)), 0, 0);
  ExpectStatus(ToMemoryStatus(Machine(), {false, 500, true}), 10000, 2000);
}

TEST(MemoryPolicyTest, StrictOvercommitBoundsGroup) {
  ExpectStatus(ToMemoryStatus(Machine(), kStrict, {8000, kUnlimited, kUnlimited}), 7000, 0);
  ExpectStatus(ToMemoryStatus(Machine(), kStrict, {6500, kUnlimited, kUnlimited}), 6500, 500);
  ExpectStatus(ToMemoryStatus(Machine(), kStrict, {6500, 100, kUnlimited}), 6500, 100);
}

TEST(MemoryPolicyTest, FullGroupHasOnlySwapUnderStrictOvercommit) {
  ExpectStatus(ToMemoryStatus(Machine(), kStrict, {1000, kUnlimited, kUnlimited}), 1000, 2000);
  ExpectStatus(ToMemoryStatus(Machine(), kStrict, {1000, kUnlimited, 1500}), 1000, 500);
  ExpectStatus(ToMemoryStatus(Machine(), kStrict, {0, 0, kUnlimited}), 0, 0);
}

TEST(MemoryPolicyTest, MoreCommittedThanLimitLeavesNothing) {
  Meminfo machine = Machine();
  machine.committed = machine.commit_limit + 1;
  ExpectStatus(ToMemoryStatus(machine, kStrict, {1000, kUnlimited, kUnlimited}), 0, 0);
}

TEST(MemoryPolicyTest, TightestFigureIsTheLimit) {
  const auto limit = [](bool strict, const CgroupRoom& room) {
    return ToMemoryStatus(Machine(), strict ? kStrict : MemorySettings{}, room).limit;
  };
  EXPECT_EQ(limit(false, {}), MemoryLimit::kMachine);
  EXPECT_EQ(limit(false, {10000, kUnlimited, kUnlimited}), MemoryLimit::kMachine);
  EXPECT_EQ(limit(false, {9999, kUnlimited, kUnlimited}), MemoryLimit::kMemoryGroup);
  EXPECT_EQ(limit(false, {kUnlimited, kUnlimited, 9999}), MemoryLimit::kMemoryGroup);
  EXPECT_EQ(limit(true, {}), MemoryLimit::kCommitLimit);
  EXPECT_EQ(limit(true, {7001, kUnlimited, kUnlimited}), MemoryLimit::kCommitLimit);
  EXPECT_EQ(limit(true, {7000, kUnlimited, kUnlimited}), MemoryLimit::kMemoryGroup);
}

TEST(MemoryPolicyTest, FiguresDoNotWrapAround) {
  for (const std::uint64_t physical : {std::uint64_t{0}, std::uint64_t{5000}, kUnlimited}) {
    for (const std::uint64_t swap : {std::uint64_t{0}, std::uint64_t{5000}, kUnlimited}) {
      for (const std::uint64_t memory_and_swap :
           {std::uint64_t{0}, std::uint64_t{5000}, kUnlimited}) {
        for (const bool strict : {false, true}) {
          const MemorySettings settings = {strict, 0, true};
          const auto status =
              ToMemoryStatus(Machine(), settings, {physical, swap, memory_and_swap});
          EXPECT_LE(status.available_physical, 10000U);
          EXPECT_LE(status.committable, 2000U);
          EXPECT_LE(status.available_physical + status.committable, memory_and_swap);
        }
      }
    }
  }
}

}  // namespace
}  // namespace kestrel::tests

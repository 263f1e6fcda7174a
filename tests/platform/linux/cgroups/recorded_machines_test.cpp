// Whole memory statuses of machines. Each directory beside this file holds one machine's files as a
// process there finds them: linux_6_1 was read off a running one, the others are laid out like
// theirs, with round figures that can be checked by hand.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "platform/linux/memory_status.h"

namespace kestrel::platform {
namespace {

constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;
constexpr std::uint64_t kTotal = 16384;  // MiB; of them 10240 are available

struct Mebibytes {
  std::uint64_t available;
  std::uint64_t committable;
};

void ExpectStatus(const std::string& machine, const Mebibytes& expected) {
  const auto status = ReadMemoryStatus(std::string(KESTRELCORE_RECORDED_MACHINES) + "/" + machine);
  ASSERT_TRUE(status);
  EXPECT_EQ(status->total_physical, kTotal * kMebibyte);
  EXPECT_EQ(status->available_physical, expected.available * kMebibyte);
  EXPECT_EQ(status->committable, expected.committable * kMebibyte);
}

// Limit 512, used 300, of it file pages 120 + 60 and slab 8 to reclaim; swap 512, used 40 (MiB).
TEST(RecordedMachinesTest, DockerOnVersion2) { ExpectStatus("docker_v2", {400, 472}); }

TEST(RecordedMachinesTest, DockerOnVersion2InTheHostsNamespace) {
  ExpectStatus("docker_v2_host_namespace", {400, 472});
}

// The pod is the tightest: 1280, used 900, to reclaim 130. Its container would have 1532.
TEST(RecordedMachinesTest, KubernetesPodWithNestedLimits) {
  ExpectStatus("kubernetes_nested", {510, 0});
}

// The user's slice alone has a limit: 4096, used 3072, to reclaim 960; swap 1024, used 256. The
// process's own group is throttled at 1024, of which it uses 2048.
TEST(RecordedMachinesTest, SystemdSliceWithALimitOnAnAncestorOnly) {
  ExpectStatus("systemd_slice", {1984, 768});
}

// Limit 512, used 300, to reclaim 180; with swap 768, used 400.
TEST(RecordedMachinesTest, DockerOnVersion1) { ExpectStatus("docker_v1", {392, 156}); }

// Limit 1024, used 400, to reclaim 80.
TEST(RecordedMachinesTest, HybridWithMemoryOnVersion1) { ExpectStatus("hybrid", {704, 0}); }

// The same, and 2 of slab.
TEST(RecordedMachinesTest, HybridWithMemoryOnVersion2) {
  ExpectStatus("hybrid_memory_unified", {706, 0});
}

TEST(RecordedMachinesTest, ALimitAboveTheMachinesRamChangesNothing) {
  ExpectStatus("limit_above_ram", {10240, 2048});
}

// Limit 256, used 700, to reclaim 34.
TEST(RecordedMachinesTest, ALimitBelowUsageLeavesNothing) {
  ExpectStatus("limit_below_usage", {0, 0});
}

// Limit 2048, used 500, to reclaim 184; swap 512. 3072 may be committed.
TEST(RecordedMachinesTest, StrictOvercommitInAGroup) {
  ExpectStatus("strict_overcommit", {1732, 512});
}

// Debian's kernel 6.1, version 2, swap, the limit on the parent group: 268435456, used 221425664,
// of it to reclaim 157290496 of file pages and 378272 of slab. A file of 150 MiB had been read
// there, and a process held 60 MiB.
TEST(RecordedMachinesTest, Linux61UnderLoad) {
  const auto status = ReadMemoryStatus(std::string(KESTRELCORE_RECORDED_MACHINES) + "/linux_6_1");
  ASSERT_TRUE(status);
  EXPECT_EQ(status->total_physical, 2026000U * 1024);
  EXPECT_EQ(status->available_physical, 204678560U);
  EXPECT_EQ(status->committable, 67108864U);
}

TEST(RecordedMachinesTest, AMachineWithoutFilesTellsNothing) {
  EXPECT_EQ(ReadMemoryStatus(std::string(KESTRELCORE_RECORDED_MACHINES) + "/none"), std::nullopt);
  EXPECT_EQ(ReadMemoryStatus(std::string(5000, '/')), std::nullopt);
}

// The machine that the tests run on, limited or not. Two queries never agree to the byte, so only
// what no process can change between them is compared.
TEST(ThisMachineTest, NoMoreIsAvailableThanThereIs) {
  const auto status = ReadMemoryStatus("");
  ASSERT_TRUE(status);
  EXPECT_GT(status->total_physical, 0U);
  EXPECT_LE(status->available_physical, status->total_physical);
}

}  // namespace
}  // namespace kestrel::platform

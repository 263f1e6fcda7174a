#include "c/record.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace kestrel::tests {
namespace {

using c::CopyText;
using c::IsRecord;
using c::WriteRecord;

// A record of a host that knows fields which this library does not.
struct LaterCpu {
  kestrel_cpu known;
  std::uint64_t later;
};

kestrel_cpu CpuOfSize(std::size_t size) {
  kestrel_cpu cpu{};
  cpu.struct_size = size;
  return cpu;
}

// Padding would let a later field take the place of bytes that no library writes.
TEST(RecordTest, RecordsHaveNoPadding) {
  EXPECT_EQ(sizeof(kestrel_result), offsetof(kestrel_result, message) + KESTREL_MESSAGE_SIZE);
  EXPECT_EQ(sizeof(kestrel_cpu), offsetof(kestrel_cpu, extensions) + sizeof(std::uint32_t));
  EXPECT_EQ(sizeof(kestrel_gpu),
            offsetof(kestrel_gpu, detection_platform_version) + KESTREL_GPU_PLATFORM_VERSION_SIZE);
  EXPECT_EQ(sizeof(kestrel_forecast), offsetof(kestrel_forecast, limit_group) + KESTREL_PATH_SIZE);
}

TEST(RecordTest, NullIsNoRecord) {
  EXPECT_FALSE(IsRecord(static_cast<const kestrel_cpu*>(nullptr)));
}

TEST(RecordTest, SizesFromTheFirstVersionOnAreRecords) {
  for (const std::size_t size : {sizeof(kestrel_cpu), sizeof(kestrel_cpu) + 8, c::kLargestSize}) {
    const kestrel_cpu cpu = CpuOfSize(size);
    EXPECT_TRUE(IsRecord(&cpu)) << size;
  }
}

TEST(RecordTest, SizesThatNoVersionHasAreNoRecords) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, sizeof(kestrel_cpu) - 8,
                                 sizeof(kestrel_cpu) + 1, c::kLargestSize + 8, ~std::size_t{0}}) {
    const kestrel_cpu cpu = CpuOfSize(size);
    EXPECT_FALSE(IsRecord(&cpu)) << size;
  }
}

TEST(RecordTest, LargerRecordOfAHostGetsZeroInItsLaterFields) {
  LaterCpu host{CpuOfSize(sizeof(LaterCpu)), 77};
  kestrel_cpu cpu{};
  cpu.extensions = 3;
  WriteRecord(&host, host.known.struct_size, cpu);
  EXPECT_EQ(host.known.struct_size, sizeof(LaterCpu));
  EXPECT_EQ(host.known.extensions, 3U);
  EXPECT_EQ(host.later, 0U);
}

TEST(RecordTest, SmallerRecordOfAHostIsNotOverrun) {
  std::array<unsigned char, sizeof(kestrel_gpu)> host{};
  host.fill(0xAA);
  kestrel_gpu gpu{};
  gpu.total_memory = 7;
  constexpr std::size_t kSize = 16;
  WriteRecord(host.data(), kSize, gpu);
  EXPECT_EQ(host[offsetof(kestrel_gpu, total_memory)], 7);
  for (std::size_t i = kSize; i < host.size(); ++i) {
    ASSERT_EQ(host[i], 0xAA) << i;
  }
}

TEST(RecordTest, TextThatFitsIsCopiedWhole) {
  char field[5] = {};
  CopyText("four", 4, field);
  EXPECT_STREQ(field, "four");
}

TEST(RecordTest, TextThatDoesNotFitIsCutBeforeTheNul) {
  char field[5] = {};
  CopyText("fives", 5, field);
  EXPECT_STREQ(field, "five");
}

TEST(RecordTest, EmptyTextLeavesTheFieldEmpty) {
  char field[5] = {};
  CopyText("", 0, field);
  EXPECT_STREQ(field, "");
}

}  // namespace
}  // namespace kestrel::tests

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "c/kestrelcore.h"
#include "platform/platform.h"
#include "tests/c/records.h"
#include "tests/fakes/cerr_recorder.h"
#include "tests/fakes/platform_fake.h"

namespace kestrel::tests {
namespace {

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;
constexpr std::uint64_t kHuge = std::numeric_limits<std::uint64_t>::max();

class MemoryTest : public testing::Test {
 protected:
  MemoryTest() {
    Platform() = {};
    Platform().memory = {16 * kGiB, 6 * kGiB, 2 * kGiB};
  }

  kestrel_forecast forecast_ = NewRecord<kestrel_forecast>();
  kestrel_result result_ = UsedResult();
  std::uint64_t bytes_ = 77;
  std::int32_t will_fail_ = 77;
  CerrRecorder cerr_;
};

TEST_F(MemoryTest, RamFiguresAreThoseOfTheSystem) {
  EXPECT_EQ(kestrel_machine_physical_ram(&bytes_, &result_), KESTREL_OK);
  EXPECT_EQ(bytes_, 16 * kGiB);
  EXPECT_EQ(kestrel_available_ram(&bytes_, &result_), KESTREL_OK);
  EXPECT_EQ(bytes_, 6 * kGiB);
  EXPECT_EQ(kestrel_used_ram(&bytes_, &result_), KESTREL_OK);
  EXPECT_EQ(bytes_, 10 * kGiB);
  EXPECT_EQ(result_.status, KESTREL_OK);
  EXPECT_STREQ(result_.message, "");
}

TEST_F(MemoryTest, RamFiguresFailIfTheSystemDoesNotReportThem) {
  Platform().Fail("QueryMemoryStatus");
  Platform().Fail("QueryTotalPhysicalMemory");
  for (const auto measure :
       {kestrel_machine_physical_ram, kestrel_available_ram, kestrel_used_ram}) {
    bytes_ = 77;
    EXPECT_EQ(measure(&bytes_, &result_), KESTREL_MEMORY_QUERY_FAILED);
    EXPECT_EQ(bytes_, 0U);
    EXPECT_STREQ(result_.message, "Failed to get global memory status.");
    EXPECT_EQ(measure(&bytes_, nullptr), KESTREL_MEMORY_QUERY_FAILED);
  }
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(MemoryTest, AllocationFailsBeyondWhatIsAvailableAndCommittable) {
  EXPECT_EQ(kestrel_will_fail_to_allocate(8 * kGiB, &will_fail_, &result_), KESTREL_OK);
  EXPECT_EQ(will_fail_, 0);
  EXPECT_EQ(result_.status, KESTREL_OK);
  EXPECT_STREQ(result_.message, "");
  EXPECT_EQ(kestrel_will_fail_to_allocate(8 * kGiB + 1, &will_fail_, &result_), KESTREL_OK);
  EXPECT_EQ(will_fail_, 1);
  EXPECT_EQ(kestrel_will_fail_to_allocate(kHuge, &will_fail_, &result_), KESTREL_OK);
  EXPECT_EQ(will_fail_, 1);
}

TEST_F(MemoryTest, FailedQueryPredictsNoFailureAndIsReported) {
  Platform().Fail("QueryMemoryStatus");
  EXPECT_EQ(kestrel_will_fail_to_allocate(kHuge, &will_fail_, &result_),
            KESTREL_MEMORY_QUERY_FAILED);
  EXPECT_EQ(will_fail_, 0);
  EXPECT_STREQ(result_.message, "Failed to get global memory status.");
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(MemoryTest, WithoutAResultTheDiagnosticIsThatOfTheCppCall) {
  Platform().Fail("QueryMemoryStatus");
  EXPECT_EQ(kestrel_will_fail_to_allocate(1, &will_fail_, nullptr), KESTREL_MEMORY_QUERY_FAILED);
  EXPECT_EQ(cerr_.text(), "Failed to get global memory status.\n");
}

TEST_F(MemoryTest, ForecastOfAnAllocationThatFitsSaysWhatIsLeft) {
  EXPECT_EQ(kestrel_memory_forecast(5 * kGiB, &forecast_, &result_), KESTREL_OK);
  EXPECT_EQ(forecast_.outcome, KESTREL_FORECAST_FITS);
  EXPECT_EQ(forecast_.spare, 3 * kGiB);
  EXPECT_EQ(forecast_.missing, 0U);
  EXPECT_EQ(forecast_.available, 6 * kGiB);
  EXPECT_EQ(forecast_.committable, 2 * kGiB);
  EXPECT_EQ(result_.status, KESTREL_OK);
  EXPECT_STREQ(result_.message, "");
}

TEST_F(MemoryTest, ForecastOfAnAllocationThatFailsSaysWhatIsMissing) {
  EXPECT_EQ(kestrel_memory_forecast(8 * kGiB + 5, &forecast_, &result_), KESTREL_OK);
  EXPECT_EQ(forecast_.outcome, KESTREL_FORECAST_FAILS);
  EXPECT_EQ(forecast_.spare, 0U);
  EXPECT_EQ(forecast_.missing, 5U);
}

TEST_F(MemoryTest, SpareBytesOfAnAllocationBeyondWhatIsAvailableAreTheRestToCommit) {
  EXPECT_EQ(kestrel_memory_forecast(7 * kGiB, &forecast_, &result_), KESTREL_OK);
  EXPECT_EQ(forecast_.spare, kGiB);
  EXPECT_EQ(kestrel_memory_forecast(8 * kGiB, &forecast_, &result_), KESTREL_OK);
  EXPECT_EQ(forecast_.spare, 0U);
}

TEST_F(MemoryTest, SpareBytesOfNoAllocationAreAllThatIsThere) {
  EXPECT_EQ(kestrel_memory_forecast(0, &forecast_, &result_), KESTREL_OK);
  EXPECT_EQ(forecast_.spare, 8 * kGiB);
}

TEST_F(MemoryTest, AllocationThatLacksOneByteFails) {
  EXPECT_EQ(kestrel_memory_forecast(8 * kGiB + 1, &forecast_, &result_), KESTREL_OK);
  EXPECT_EQ(forecast_.outcome, KESTREL_FORECAST_FAILS);
  EXPECT_EQ(forecast_.spare, 0U);
  EXPECT_EQ(forecast_.missing, 1U);
}

TEST_F(MemoryTest, ForecastAgreesWithThePredictionAtEveryEdge) {
  for (const std::uint64_t bytes :
       {std::uint64_t{0}, 6 * kGiB, 6 * kGiB + 1, 8 * kGiB - 1, 8 * kGiB, 8 * kGiB + 1, kHuge}) {
    ASSERT_EQ(kestrel_will_fail_to_allocate(bytes, &will_fail_, &result_), KESTREL_OK);
    ASSERT_EQ(kestrel_memory_forecast(bytes, &forecast_, &result_), KESTREL_OK);
    EXPECT_EQ(forecast_.outcome == KESTREL_FORECAST_FAILS, will_fail_ == 1) << bytes;
    EXPECT_EQ(forecast_.missing > 0, will_fail_ == 1) << bytes;
  }
}

TEST_F(MemoryTest, SpareBytesBeyondTheLargestNumberAreTheLargestNumber) {
  Platform().memory = {kHuge, kHuge - 1, kGiB};
  EXPECT_EQ(kestrel_memory_forecast(1, &forecast_, &result_), KESTREL_OK);
  EXPECT_EQ(forecast_.spare, kHuge);
}

TEST_F(MemoryTest, ForecastNamesTheLimitThatDecides) {
  ASSERT_EQ(kestrel_memory_forecast(1, &forecast_, &result_), KESTREL_OK);
  EXPECT_EQ(forecast_.limit, KESTREL_LIMIT_MACHINE);
  EXPECT_STREQ(forecast_.limit_group, "");
  Platform().memory.limit = platform::MemoryLimit::kCommitLimit;
  ASSERT_EQ(kestrel_memory_forecast(1, &forecast_, &result_), KESTREL_OK);
  EXPECT_EQ(forecast_.limit, KESTREL_LIMIT_COMMIT);
}

TEST_F(MemoryTest, ForecastNamesTheGroupWhoseLimitDecides) {
  Platform().memory.limit = platform::MemoryLimit::kMemoryGroup;
  Platform().group_directory = "/sys/fs/cgroup/render.service";
  ASSERT_EQ(kestrel_memory_forecast(1, &forecast_, &result_), KESTREL_OK);
  EXPECT_EQ(forecast_.limit, KESTREL_LIMIT_GROUP);
  EXPECT_STREQ(forecast_.limit_group, "/sys/fs/cgroup/render.service");
}

TEST_F(MemoryTest, ForecastIsUnknownIfTheSystemDoesNotReportItsFigures) {
  Platform().Fail("QueryMemoryLimit");
  forecast_.available = 77;
  EXPECT_EQ(kestrel_memory_forecast(1, &forecast_, &result_), KESTREL_MEMORY_QUERY_FAILED);
  EXPECT_EQ(forecast_.outcome, KESTREL_FORECAST_UNKNOWN);
  EXPECT_EQ(forecast_.available, 0U);
  EXPECT_STREQ(result_.message, "Failed to get global memory status.");
}

TEST_F(MemoryTest, ForecastRefusesInvalidRecords) {
  kestrel_forecast unset{};
  EXPECT_EQ(kestrel_memory_forecast(1, nullptr, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(kestrel_memory_forecast(1, &unset, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_STREQ(result_.message, "forecast is null, or its struct_size is not set");
  EXPECT_TRUE(Platform().calls.empty());
}

TEST_F(MemoryTest, NullOutputIsAnInvalidArgument) {
  EXPECT_EQ(kestrel_machine_physical_ram(nullptr, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(kestrel_available_ram(nullptr, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(kestrel_used_ram(nullptr, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(kestrel_will_fail_to_allocate(1, nullptr, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_TRUE(Platform().calls.empty());
}

}  // namespace
}  // namespace kestrel::tests

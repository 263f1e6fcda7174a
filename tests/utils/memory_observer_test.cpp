#include "utils/memory_observer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <type_traits>

#include "simulator/control.h"
#include "tests/fakes/cerr_recorder.h"
#include "tests/fakes/platform_fake.h"
#include "tests/fakes/sink_recorder.h"
#include "utils/measure_memory.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::MeasureProcessUsedRam;
using kestrel_utils::MemoryObserver;
using kestrel_utils::MissingBytes;
using kestrel_utils::PredictAllocationFailure;

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;
constexpr std::uint64_t kHuge = std::numeric_limits<std::uint64_t>::max();

class MemoryObserverTest : public testing::Test {
 protected:
  MemoryObserverTest() {
    Platform() = {};
    Platform().memory = {16 * kGiB, 6 * kGiB, 2 * kGiB};
  }

  // Forecasts on a machine with these figures.
  bool WillFail(std::uint64_t available, std::uint64_t committable, std::uint64_t bytes) {
    Platform().memory = {kHuge, available, committable};
    return observer_.willFailToAllocate(static_cast<long long>(bytes));
  }

  MemoryObserver observer_;
  CerrRecorder cerr_;
};

TEST_F(MemoryObserverTest, ObserverIsAnEmptyValue) {
  static_assert(std::is_empty_v<MemoryObserver>);
  static_assert(!std::is_polymorphic_v<MemoryObserver>);
  static_assert(std::is_nothrow_default_constructible_v<MemoryObserver>);
  static_assert(std::is_copy_constructible_v<MemoryObserver>);
  static_assert(std::is_move_constructible_v<MemoryObserver>);
  MemoryObserver other;
  EXPECT_EQ(&(other = observer_), &other);
  EXPECT_EQ(&(other = MemoryObserver{}), &other);
}

TEST_F(MemoryObserverTest, ErrorCodeIsMinusOne) {
  static_assert(std::is_same_v<decltype(MemoryObserver::kRamMeterErrorCode), const int>);
  EXPECT_EQ(MemoryObserver::kRamMeterErrorCode, -1);
}

TEST_F(MemoryObserverTest, RamFiguresAreReturnedUnchanged) {
  EXPECT_EQ(MemoryObserver::getMachinePhysicalRAM(), 16LL << 30);
  EXPECT_EQ(observer_.getAvailableRAM(), 6LL << 30);
  EXPECT_EQ(observer_.getUsedRAM(), 10LL << 30);
}

TEST_F(MemoryObserverTest, EveryRamMeterMakesOneQuery) {
  static_cast<void>(MemoryObserver::getMachinePhysicalRAM());
  static_cast<void>(observer_.getAvailableRAM());
  static_cast<void>(observer_.getUsedRAM());
  EXPECT_EQ(Platform().calls,
            (std::vector<std::string>{"QueryTotalPhysicalMemory()", "QueryMemoryStatus()",
                                      "QueryMemoryStatus()"}));
}

// No figure is promised then; it is never garbage.
TEST_F(MemoryObserverTest, FailedQueryReadsAsZeroRamWithoutMessage) {
  Platform().Fail("QueryMemoryStatus");
  Platform().Fail("QueryTotalPhysicalMemory");
  EXPECT_EQ(MemoryObserver::getMachinePhysicalRAM(), 0);
  EXPECT_EQ(observer_.getAvailableRAM(), 0);
  EXPECT_EQ(observer_.getUsedRAM(), 0);
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(MemoryObserverTest, ProcessRamIsTheResidentSet) {
  Platform().resident_bytes = 5 * kGiB + 1;
  EXPECT_EQ(MemoryObserver::getProcessUsedRAM(77), (5LL << 30) + 1);
  EXPECT_EQ(Platform().calls,
            (std::vector<std::string>{"Process::Open(77, memory)", "Process::ResidentBytes()",
                                      "Process::Close()"}));
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(MemoryObserverTest, ProcessOneIsMeasured) {
  Platform().resident_bytes = 4096;
  EXPECT_EQ(MemoryObserver::getProcessUsedRAM(1), 4096);
}

TEST_F(MemoryObserverTest, ProcessRamRefusesPidZeroFirst) {
  EXPECT_EQ(MemoryObserver::getProcessUsedRAM(0), -1);
  EXPECT_EQ(
      cerr_.writes(),
      std::vector<std::string>{"Failed to get used RAM for PID '0' since PID must be positive!\n"});
  EXPECT_EQ(cerr_.flushes(), 1);
  EXPECT_TRUE(Platform().calls.empty());
}

TEST_F(MemoryObserverTest, ProcessRamRefusesNegativePidFirst) {
  EXPECT_EQ(MemoryObserver::getProcessUsedRAM(-5), -1);
  EXPECT_EQ(cerr_.writes(),
            std::vector<std::string>{
                "Failed to get used RAM for PID '-5' since PID must be positive!\n"});
  EXPECT_EQ(cerr_.flushes(), 1);
  EXPECT_TRUE(Platform().calls.empty());
}

TEST_F(MemoryObserverTest, ProcessRamReportsFailedOpen) {
  Platform().Fail("Process::Open");
  EXPECT_EQ(MemoryObserver::getProcessUsedRAM(4711), -1);
  EXPECT_EQ(cerr_.writes(), std::vector<std::string>{"Failed to open process with PID 4711\n"});
  EXPECT_EQ(cerr_.flushes(), 1);
}

TEST_F(MemoryObserverTest, ProcessRamFailsWithoutMessageIfUnreadable) {
  Platform().Fail("Process::ResidentBytes");
  EXPECT_EQ(MemoryObserver::getProcessUsedRAM(4711), -1);
  EXPECT_EQ(cerr_.text(), "");
  EXPECT_EQ(Platform().open_handles, 0);
  EXPECT_EQ(Platform().calls.back(), "Process::Close()");
}

TEST_F(MemoryObserverTest, TwoDevicesSumUpToTotalVramAndTheFirstIsFreeVram) {
  simulator::Machine machine;
  machine.devices = {{"a", "gfx1", 0, 8 * kGiB, 7 * kGiB, 8 * kGiB},
                     {"b", "gfx2", 0, 16 * kGiB, 15 * kGiB, 16 * kGiB}};
  simulator::Install(machine);
  EXPECT_EQ(MemoryObserver::getMachinePhysicalVRAM(), 24LL << 30);
  EXPECT_EQ(observer_.getAvailableVRAM(), 7LL << 30);
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(MemoryObserverTest, ZeroBytesNeverFail) { EXPECT_FALSE(WillFail(0, 0, 0)); }

TEST_F(MemoryObserverTest, LessThanIsAvailableDoesNotFail) {
  EXPECT_FALSE(WillFail(6 * kGiB, 2 * kGiB, kGiB));
  EXPECT_FALSE(WillFail(6 * kGiB, 0, 1));
}

TEST_F(MemoryObserverTest, MissingBytesAreThoseBeyondBothFigures) {
  const platform::MemoryStatus status{16, 6, 2};
  EXPECT_EQ(MissingBytes(0, status), 0U);
  EXPECT_EQ(MissingBytes(5, status), 0U);
  EXPECT_EQ(MissingBytes(8, status), 0U);
  EXPECT_EQ(MissingBytes(9, status), 1U);
  EXPECT_EQ(MissingBytes(20, status), 12U);
}

TEST_F(MemoryObserverTest, ForecastFailsFromOneByteBeyondAvailablePlusCommittable) {
  EXPECT_FALSE(WillFail(6 * kGiB, 2 * kGiB, 6 * kGiB));
  EXPECT_FALSE(WillFail(6 * kGiB, 2 * kGiB, 6 * kGiB + 1));
  EXPECT_FALSE(WillFail(6 * kGiB, 2 * kGiB, 8 * kGiB));
  EXPECT_TRUE(WillFail(6 * kGiB, 2 * kGiB, 8 * kGiB + 1));
}

TEST_F(MemoryObserverTest, NegativeSizeCountsAsHuge) { EXPECT_TRUE(WillFail(6, 2, kHuge)); }

// The sum of the two figures wraps to a small number.
TEST_F(MemoryObserverTest, FiguresWhoseSumWrapsDoNotFail) {
  EXPECT_FALSE(WillFail(kHuge - 1, kHuge, kHuge));
  EXPECT_FALSE(WillFail(kHuge, kHuge, 1));
}

TEST_F(MemoryObserverTest, ForecastWithoutCommittableFailsFromOneByteBeyondAvailable) {
  EXPECT_FALSE(WillFail(kGiB, 0, kGiB));
  EXPECT_TRUE(WillFail(kGiB, 0, kGiB + 1));
}

TEST_F(MemoryObserverTest, ForecastMakesOneQuery) {
  WillFail(1, 1, 1);
  EXPECT_EQ(Platform().calls, std::vector<std::string>{"QueryMemoryStatus()"});
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(MemoryObserverTest, FailedQueryForecastsSuccessWithMessage) {
  Platform().Fail("QueryMemoryStatus");
  EXPECT_FALSE(observer_.willFailToAllocate(-1));
  EXPECT_EQ(cerr_.writes(), std::vector<std::string>{"Failed to get global memory status.\n"});
  EXPECT_EQ(cerr_.flushes(), 1);
}

TEST_F(MemoryObserverTest, CallerSinkGetsEveryMessageInsteadOfStandardError) {
  Platform().Fail("Process::Open");
  Platform().Fail("QueryMemoryStatus");
  SinkRecorder recorder;
  EXPECT_EQ(MeasureProcessUsedRam(0, recorder.sink()), -1);
  EXPECT_EQ(MeasureProcessUsedRam(4711, recorder.sink()), -1);
  EXPECT_FALSE(PredictAllocationFailure(1, recorder.sink()));
  EXPECT_EQ(recorder.text(),
            "Failed to get used RAM for PID '0' since PID must be positive!\n|"
            "Failed to open process with PID 4711\n|"
            "Failed to get global memory status.\n|");
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(MemoryObserverTest, ThrowingStreamOfTheHostIsContained) {
  static_assert(noexcept(MemoryObserver::getMachinePhysicalRAM()));
  static_assert(noexcept(MemoryObserver::getMachinePhysicalVRAM()));
  static_assert(noexcept(MemoryObserver::getProcessUsedRAM(1)));
  static_assert(noexcept(observer_.getAvailableRAM()));
  static_assert(noexcept(observer_.getUsedRAM()));
  static_assert(noexcept(observer_.getAvailableVRAM()));
  static_assert(noexcept(observer_.willFailToAllocate(1)));
  simulator::Install({});
  cerr_.Throw();
  EXPECT_EQ(MemoryObserver::getProcessUsedRAM(0), -1);
  EXPECT_EQ(MemoryObserver::getMachinePhysicalVRAM(), 0);
  EXPECT_EQ(cerr_.failed_writes(), 2);
}

}  // namespace
}  // namespace kestrel::tests

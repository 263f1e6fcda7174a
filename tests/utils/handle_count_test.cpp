#include <gtest/gtest.h>
#include <utils/cpu_usage.h>
#include <utils/memory_observer.h>
#include <windows.h>

#include <iostream>
#include <streambuf>

#include "tests/platform/host_process.h"

// No meter of the shared library leaves a handle open, over the real system.

namespace kestrel::tests {
namespace {

using kestrel_utils::GetCpuUsage;
using kestrel_utils::MemoryObserver;

constexpr int kCalls = 100'000;

// Discards every character.
class Discard : public std::streambuf {
 protected:
  int_type overflow(int_type character) override { return traits_type::not_eof(character); }
};

template <typename Call>
void ExpectNoHandleLeaks(Call call) {
  call();  // The first call may open handles that the process keeps, such as the console.
  const int before = OpenHandleCount();
  for (int i = 0; i < kCalls; ++i) {
    call();
  }
  EXPECT_EQ(OpenHandleCount(), before);
}

TEST(HandleCountTest, OpenHandleIsCounted) {
  const int before = OpenHandleCount();
  const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  EXPECT_EQ(OpenHandleCount(), before + 1);
  CloseHandle(event);
  EXPECT_EQ(OpenHandleCount(), before);
}

TEST(HandleCountTest, CpuUsageLeaksNone) {
  ExpectNoHandleLeaks([] { EXPECT_GE(GetCpuUsage(OwnPid(), 0), 0.0F); });
}

TEST(HandleCountTest, FailedCpuUsageLeaksNone) {
  Discard discard;
  std::streambuf* const console = std::cerr.rdbuf(&discard);
  ExpectNoHandleLeaks([] { EXPECT_EQ(GetCpuUsage(0x7FFFFFFC, 0), -1.0F); });
  std::cerr.rdbuf(console);
}

TEST(HandleCountTest, ProcessUsedRamLeaksNone) {
  ExpectNoHandleLeaks([] { EXPECT_GT(MemoryObserver::getProcessUsedRAM(OwnPid()), 0); });
}

TEST(HandleCountTest, FailedProcessUsedRamLeaksNone) {
  Discard discard;
  std::streambuf* const console = std::cerr.rdbuf(&discard);
  ExpectNoHandleLeaks([] {
    EXPECT_EQ(MemoryObserver::getProcessUsedRAM(0x7FFFFFFC), MemoryObserver::kRamMeterErrorCode);
  });
  std::cerr.rdbuf(console);
}

TEST(HandleCountTest, MachinePhysicalRamLeaksNone) {
  ExpectNoHandleLeaks([] { EXPECT_GT(MemoryObserver::getMachinePhysicalRAM(), 0); });
}

TEST(HandleCountTest, AvailableRamLeaksNone) {
  ExpectNoHandleLeaks([] { EXPECT_GT(MemoryObserver{}.getAvailableRAM(), 0); });
}

TEST(HandleCountTest, UsedRamLeaksNone) {
  ExpectNoHandleLeaks([] { EXPECT_GT(MemoryObserver{}.getUsedRAM(), 0); });
}

TEST(HandleCountTest, WillFailToAllocateLeaksNone) {
  ExpectNoHandleLeaks([] { EXPECT_FALSE(MemoryObserver{}.willFailToAllocate(0)); });
}

TEST(HandleCountTest, MachinePhysicalVramLeaksNone) {
  ExpectNoHandleLeaks([] { EXPECT_GT(MemoryObserver::getMachinePhysicalVRAM(), 0); });
}

TEST(HandleCountTest, AvailableVramLeaksNone) {
  ExpectNoHandleLeaks([] { EXPECT_GT(MemoryObserver{}.getAvailableVRAM(), 0); });
}

}  // namespace
}  // namespace kestrel::tests

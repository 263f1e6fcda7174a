#include <gtest/gtest.h>
#include <utils/cpu_usage.h>
#include <utils/memory_observer.h>
#include <windows.h>

#include <iostream>
#include <streambuf>

#include "tests/platform/host_process.h"

// The shared library as a host has it, over the real system.

namespace {

using kestrel::tests::OpenHandleCount;
using kestrel::tests::OwnPid;
using kestrel_utils::MemoryObserver;

constexpr int kCalls = 100'000;

// Takes every character and keeps none.
class Discard : public std::streambuf {
 protected:
  int_type overflow(int_type character) override { return traits_type::not_eof(character); }
};

template <typename Call>
void ExpectNoHandleLeft(Call call) {
  call();  // The first call may open what the process then keeps, such as a console.
  const int before = OpenHandleCount();
  for (int i = 0; i < kCalls; ++i) {
    call();
  }
  EXPECT_EQ(OpenHandleCount(), before);
}

TEST(HandleCount, SeesAHandleThatIsLeftOpen) {
  const int before = OpenHandleCount();
  const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  EXPECT_EQ(OpenHandleCount(), before + 1);
  CloseHandle(event);
  EXPECT_EQ(OpenHandleCount(), before);
}

TEST(HandleCount, CpuUsage) {
  ExpectNoHandleLeft([] { EXPECT_GE(kestrel_utils::GetCpuUsage(OwnPid(), 0), 0.0f); });
}

TEST(HandleCount, CpuUsageOfNoProcess) {
  Discard discard;
  std::streambuf* const console = std::cerr.rdbuf(&discard);
  ExpectNoHandleLeft([] { EXPECT_EQ(kestrel_utils::GetCpuUsage(0x7FFFFFFC, 0), -1.0f); });
  std::cerr.rdbuf(console);
}

TEST(HandleCount, ProcessUsedRam) {
  ExpectNoHandleLeft([] { EXPECT_GT(MemoryObserver::getProcessUsedRAM(OwnPid()), 0); });
}

TEST(HandleCount, ProcessUsedRamOfNoProcess) {
  Discard discard;
  std::streambuf* const console = std::cerr.rdbuf(&discard);
  ExpectNoHandleLeft([] {
    EXPECT_EQ(MemoryObserver::getProcessUsedRAM(0x7FFFFFFC), MemoryObserver::kRamMeterErrorCode);
  });
  std::cerr.rdbuf(console);
}

TEST(HandleCount, MachinePhysicalRam) {
  ExpectNoHandleLeft([] { EXPECT_GT(MemoryObserver::getMachinePhysicalRAM(), 0); });
}

TEST(HandleCount, AvailableRam) {
  ExpectNoHandleLeft([] { EXPECT_GT(MemoryObserver{}.getAvailableRAM(), 0); });
}

TEST(HandleCount, UsedRam) {
  ExpectNoHandleLeft([] { EXPECT_GT(MemoryObserver{}.getUsedRAM(), 0); });
}

TEST(HandleCount, WillFailToAllocate) {
  ExpectNoHandleLeft([] { EXPECT_FALSE(MemoryObserver{}.willFailToAllocate(0)); });
}

TEST(HandleCount, MachinePhysicalVram) {
  ExpectNoHandleLeft([] { EXPECT_GT(MemoryObserver::getMachinePhysicalVRAM(), 0); });
}

TEST(HandleCount, AvailableVram) {
  ExpectNoHandleLeft([] { EXPECT_GT(MemoryObserver{}.getAvailableVRAM(), 0); });
}

}  // namespace

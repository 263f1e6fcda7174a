#include <gtest/gtest.h>
#include <utils/cpu_usage.h>
#include <utils/memory_observer.h>
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <memory>
#include <streambuf>

// The shared library as a host has it, over the real system.

namespace {

using kestrel_utils::MemoryObserver;

constexpr int kCalls = 100'000;

// What NtQuerySystemInformation tells for SystemExtendedHandleInformation, which winternl.h leaves
// out: every handle of the system with its owner. GetProcessHandleCount is always 0 under Wine.
constexpr ULONG kSystemExtendedHandleInformation = 64;
using QuerySystemInformation = LONG(WINAPI*)(ULONG what, void* buffer, ULONG size, ULONG* needed);

struct HandleEntry {
  void* object;
  ULONG_PTR pid;
  ULONG_PTR handle;
  ULONG access;
  USHORT trace_index;
  USHORT type;
  ULONG attributes;
  ULONG reserved;
};

struct HandleList {
  ULONG_PTR count;
  ULONG_PTR reserved;
  HandleEntry entries[65536];
};

std::ptrdiff_t OpenHandles() {
  const auto list = std::make_unique<HandleList>();
  const auto query = reinterpret_cast<QuerySystemInformation>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
  EXPECT_EQ(query(kSystemExtendedHandleInformation, list.get(), sizeof(*list), nullptr), 0);
  return std::count_if(list->entries, list->entries + list->count,
                       [](const HandleEntry& entry) { return entry.pid == GetCurrentProcessId(); });
}

int OwnPid() { return static_cast<int>(GetCurrentProcessId()); }

// Takes every character and keeps none.
class Discard : public std::streambuf {
 protected:
  int_type overflow(int_type character) override { return traits_type::not_eof(character); }
};

template <typename Call>
void ExpectNoHandleLeft(Call call) {
  call();  // The first call may open what the process then keeps, such as a console.
  const std::ptrdiff_t before = OpenHandles();
  for (int i = 0; i < kCalls; ++i) {
    call();
  }
  EXPECT_EQ(OpenHandles(), before);
}

TEST(HandleCount, SeesAHandleThatIsLeftOpen) {
  const std::ptrdiff_t before = OpenHandles();
  const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  EXPECT_EQ(OpenHandles(), before + 1);
  CloseHandle(event);
  EXPECT_EQ(OpenHandles(), before);
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

// No successful meter call allocates heap memory.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "bench/allocation_count.h"
#include "simulator/control.h"
#include "tests/platform/host_process.h"
#include "utils/cpu_usage.h"
#include "utils/memory_observer.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::GetCpuUsage;
using kestrel_utils::MemoryObserver;

// Returns how often the second run of the action allocates. The C library sets itself up in the
// first.
template <typename Action>
int AllocationsOf(Action action) {
  action();
  const std::uint64_t before = bench::AllocationCount();
  action();
  return static_cast<int>(bench::AllocationCount() - before);
}

TEST(AllocationTest, AllocationsAreCounted) {
  // Not as a new-expression, and calloc through a pointer: the compiler may remove an unused pair.
  EXPECT_EQ(AllocationsOf([] { ::operator delete(::operator new(1)); }), 1);
  void* (*volatile const allocate)(std::size_t, std::size_t) = calloc;
  EXPECT_EQ(AllocationsOf([&] { free(allocate(1, 1)); }), 1);
}

TEST(AllocationTest, CpuUsageAllocatesNothing) {
  const int pid = OwnPid();
  float usage = -1.0F;
  EXPECT_EQ(AllocationsOf([&] { usage = GetCpuUsage(pid, 1); }), 0);
  EXPECT_GE(usage, 0.0F);
}

TEST(AllocationTest, ProcessUsedRamAllocatesNothing) {
  const int pid = OwnPid();
  long long used = -1;
  EXPECT_EQ(AllocationsOf([&] { used = MemoryObserver::getProcessUsedRAM(pid); }), 0);
  EXPECT_GT(used, 0);
}

TEST(AllocationTest, MachineRamAllocatesNothing) {
  const MemoryObserver observer;
  long long sum = 0;
  EXPECT_EQ(AllocationsOf([&] {
              sum = MemoryObserver::getMachinePhysicalRAM() + observer.getAvailableRAM() +
                    observer.getUsedRAM();
            }),
            0);
  EXPECT_GT(sum, 0);
}

TEST(AllocationTest, WillFailToAllocateAllocatesNothing) {
  const MemoryObserver observer;
  bool fails = false;
  EXPECT_EQ(AllocationsOf([&] { fails = observer.willFailToAllocate(-1); }), 0);
  EXPECT_TRUE(fails);
}

// The simulated runtime records every call, so its own allocations are counted first and
// subtracted.
TEST(AllocationTest, VramAllocatesNoMoreThanTheRuntime) {
  simulator::Machine machine;
  machine.devices.resize(8);
  simulator::Install(machine);
  const MemoryObserver observer;
  hipDeviceProp_t properties{};
  std::size_t free = 0;
  std::size_t total = 0;
  int count = 0;
  const int runtime_total = AllocationsOf([&] {
    static_cast<void>(hipGetDeviceCount(&count));
    for (int device = 0; device < count; ++device) {
      static_cast<void>(hipGetDeviceProperties(&properties, device));
    }
  });
  simulator::Install(machine);
  EXPECT_EQ(AllocationsOf([] { static_cast<void>(MemoryObserver::getMachinePhysicalVRAM()); }),
            runtime_total);
  simulator::Install(machine);
  const int runtime_free = AllocationsOf([&] {
    static_cast<void>(hipGetDeviceCount(&count));
    static_cast<void>(hipSetDevice(0));
    static_cast<void>(hipMemGetInfo(&free, &total));
  });
  simulator::Install(machine);
  EXPECT_EQ(AllocationsOf([&] { static_cast<void>(observer.getAvailableVRAM()); }), runtime_free);
}

}  // namespace
}  // namespace kestrel::tests

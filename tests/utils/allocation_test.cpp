// No successful meter call allocates heap memory. The program replaces the C library's allocation
// functions, also for the libraries that it loads, and counts their calls.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>

#include "simulator/control.h"
#include "tests/platform/host_process.h"
#include "utils/cpu_usage.h"
#include "utils/memory_observer.h"

extern "C" {
// The names under which glibc's allocator remains available.
void* __libc_malloc(std::size_t size);                           // NOLINT
void* __libc_calloc(std::size_t count, std::size_t size);        // NOLINT
void* __libc_realloc(void* memory, std::size_t size);            // NOLINT
void* __libc_memalign(std::size_t alignment, std::size_t size);  // NOLINT
}

namespace {

thread_local bool counting = false;
thread_local int allocations = 0;

void Count() {
  if (counting) {
    ++allocations;
  }
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  Count();
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  Count();
  return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
  Count();
  return __libc_realloc(memory, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  Count();
  return __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  Count();
  *memory = __libc_memalign(alignment, size);
  return *memory == nullptr ? 12 : 0;  // ENOMEM
}

}  // extern "C"

namespace kestrel::tests {
namespace {

using kestrel_utils::GetCpuUsage;
using kestrel_utils::MemoryObserver;

// Returns how often the second run of the action allocates. The C library sets itself up in the
// first.
template <typename Action>
int AllocationsOf(Action action) {
  action();
  allocations = 0;
  counting = true;
  action();
  counting = false;
  return allocations;
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

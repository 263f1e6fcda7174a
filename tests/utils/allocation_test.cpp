// No successful meter call takes heap memory: counted by an allocator that stands before the C
// library's own, for this program and the libraries that it loads.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>

#include "simulator/control.h"
#include "tests/platform/host_process.h"
#include "utils/cpu_usage.h"
#include "utils/memory_observer.h"

extern "C" {
// glibc's allocator under its other names.
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

// How often the action allocates, the second time: what the C library sets up once does not count.
template <typename Action>
int AllocationsOf(Action action) {
  action();
  allocations = 0;
  counting = true;
  action();
  counting = false;
  return allocations;
}

TEST(AllocationTest, TheCounterCounts) {
  // Called by name or through a pointer, since the compiler may leave out what nobody looks at.
  EXPECT_EQ(AllocationsOf([] { ::operator delete(::operator new(1)); }), 1);
  void* (*volatile const allocate)(std::size_t, std::size_t) = calloc;
  EXPECT_EQ(AllocationsOf([&] { free(allocate(1, 1)); }), 1);
}

TEST(AllocationTest, CpuUsageTakesNone) {
  const int pid = OwnPid();
  float usage = -1.0F;
  EXPECT_EQ(AllocationsOf([&] { usage = GetCpuUsage(pid, 1); }), 0);
  EXPECT_GE(usage, 0.0F);
}

TEST(AllocationTest, ProcessRamTakesNone) {
  const int pid = OwnPid();
  long long used = -1;
  EXPECT_EQ(AllocationsOf([&] { used = MemoryObserver::getProcessUsedRAM(pid); }), 0);
  EXPECT_GT(used, 0);
}

TEST(AllocationTest, MachineRamTakesNone) {
  const MemoryObserver observer;
  long long sum = 0;
  EXPECT_EQ(AllocationsOf([&] {
              sum = MemoryObserver::getMachinePhysicalRAM() + observer.getAvailableRAM() +
                    observer.getUsedRAM();
            }),
            0);
  EXPECT_GT(sum, 0);
}

TEST(AllocationTest, TheForecastTakesNone) {
  const MemoryObserver observer;
  bool fails = false;
  EXPECT_EQ(AllocationsOf([&] { fails = observer.willFailToAllocate(-1); }), 0);
  EXPECT_TRUE(fails);
}

// Over the library's own code: the simulated runtime keeps a record of every call, so its
// allocations are taken off.
TEST(AllocationTest, VramTakesNoneBeyondTheRuntimesOwn) {
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

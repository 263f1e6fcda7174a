// Every meter on a thread that has no more stack than the headers promise to be enough. The meters
// are those of the shared library: binding its symbols takes stack at the first call.

#include <alloca.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <ostream>
#include <stdexcept>
#include <string>

#include "tests/platform/linux/child_process.h"
#include "utils/cpu_usage.h"
#include "utils/memory_observer.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::GetCpuUsage;
using kestrel_utils::MemoryObserver;

constexpr std::size_t kPromised = 16U << 10;
constexpr std::size_t kGuard = 64U << 10;  // larger than a frame that could step over it
constexpr std::size_t kStack = 64U << 10;  // the promised size and what a thread starts with

struct Meter {
  const char* name;
  bool (*call)();  // returns whether the result is as expected
};

std::ostream& operator<<(std::ostream& stream, const Meter& meter) { return stream << meter.name; }

// The VRAM meters also need what the HIP runtime needs, so no figure is promised for them.
constexpr Meter kMeters[] = {
    {"CpuUsage", [] { return GetCpuUsage(getpid(), 1) >= 0.0F; }},
    {"CpuUsageOfNoProcess", [] { return GetCpuUsage(0, 1) == -1.0F; }},
    {"ProcessUsedRam", [] { return MemoryObserver::getProcessUsedRAM(getpid()) > 0; }},
    {"ProcessUsedRamOfNoProcess", [] { return MemoryObserver::getProcessUsedRAM(0) == -1; }},
    {"MachinePhysicalRam", [] { return MemoryObserver::getMachinePhysicalRAM() > 0; }},
    {"AvailableRam", [] { return MemoryObserver{}.getAvailableRAM() >= 0; }},
    {"UsedRam", [] { return MemoryObserver{}.getUsedRAM() >= 0; }},
    {"WillFailToAllocate", [] { return !MemoryObserver{}.willFailToAllocate(0); }},
};

struct Call {
  const Meter* meter;
  char* stack_end;  // its lowest address
  bool succeeded = false;
};

// Uses up the stack until only the promised size is left.
void* CallMeter(void* argument) {
  Call& call = *static_cast<Call*>(argument);
  char* const here = static_cast<char*>(__builtin_frame_address(0));
  const auto left = static_cast<std::size_t>(here - call.stack_end);
  auto* const filler = static_cast<volatile char*>(alloca(left - kPromised));
  filler[0] = 0;
  call.succeeded = call.meter->call();
  return nullptr;
}

void CallOnSmallStack(const Meter& meter) {
  void* const memory =
      mmap(nullptr, kGuard + kStack, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  Call call{&meter, static_cast<char*>(memory) + kGuard};
  pthread_attr_t attributes{};
  pthread_t thread{};
  if (memory == MAP_FAILED || mprotect(memory, kGuard, PROT_NONE) != 0 ||
      pthread_attr_init(&attributes) != 0 ||
      pthread_attr_setstack(&attributes, call.stack_end, kStack) != 0 ||
      pthread_create(&thread, &attributes, CallMeter, &call) != 0 ||
      pthread_join(thread, nullptr) != 0) {
    throw std::runtime_error("thread");
  }
  if (!call.succeeded) {
    throw std::runtime_error("unexpected result");
  }
}

class SmallStackTest : public testing::TestWithParam<Meter> {};

// In a process of its own, so that this call is the first one.
TEST_P(SmallStackTest, FirstCallRunsInThePromisedStack) {
  const Outcome outcome = RunApart([] { CallOnSmallStack(GetParam()); });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

INSTANTIATE_TEST_SUITE_P(Meters, SmallStackTest, testing::ValuesIn(kMeters),
                         [](const auto& meter) { return std::string(meter.param.name); });

}  // namespace
}  // namespace kestrel::tests

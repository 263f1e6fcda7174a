// The meters over the native layer: neither success nor failure leaves a handle open.

#include <gtest/gtest.h>

#include <limits>

#include "simulator/control.h"
#include "tests/fakes/cerr_recorder.h"
#include "tests/platform/host_process.h"
#include "utils/cpu_usage.h"
#include "utils/memory_observer.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::GetCpuUsage;
using kestrel_utils::MemoryObserver;

constexpr int kCalls = 1000;

void CallEveryMeter() {
  const MemoryObserver observer;
  for (const int pid : {OwnPid(), 0, -1, std::numeric_limits<int>::max()}) {
    static_cast<void>(GetCpuUsage(pid, 0));
    static_cast<void>(MemoryObserver::getProcessUsedRAM(pid));
  }
  static_cast<void>(MemoryObserver::getMachinePhysicalRAM());
  static_cast<void>(observer.getAvailableRAM());
  static_cast<void>(observer.getUsedRAM());
  static_cast<void>(observer.willFailToAllocate(1));
  static_cast<void>(MemoryObserver::getMachinePhysicalVRAM());
  static_cast<void>(observer.getAvailableVRAM());
}

TEST(HandleLeakTest, NoMeterLeavesAHandleOpen) {
  const CerrRecorder cerr;
  simulator::Install({});
  CallEveryMeter();  // opens what the runtimes keep open
  const int before = OpenHandleCount();
  for (int call = 0; call < kCalls; ++call) {
    CallEveryMeter();
  }
  EXPECT_EQ(OpenHandleCount(), before);
}

}  // namespace
}  // namespace kestrel::tests

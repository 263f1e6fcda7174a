// All calls from several threads at once, over the native layer. The build with the thread
// sanitizer finds the data races.

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "simulator/control.h"
#include "system/hardware_survey.h"
#include "tests/platform/host_process.h"
#include "utils/cpu_usage.h"
#include "utils/memory_observer.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::GetCpuUsage;
using kestrel_utils::MemoryObserver;

constexpr int kThreads = 4;
constexpr int kRounds = 50;

void CallEverything(int pid) {
  const MemoryObserver observer;
  for (int round = 0; round < kRounds; ++round) {
    const auto survey = system::SurveyHardware();
    EXPECT_EQ(survey.gpuSurvey.second.size(), 3U);
    EXPECT_EQ(survey.cpuSurvey.first.code, system::ResultCode::Success);
    EXPECT_EQ(simulator::CurrentDevice(), 2);
    EXPECT_GE(GetCpuUsage(pid, 0), 0.0F);
    EXPECT_GT(MemoryObserver::getProcessUsedRAM(pid), 0);
    EXPECT_GT(MemoryObserver::getMachinePhysicalRAM(), 0);
    const long long available = observer.getAvailableRAM();
    EXPECT_GE(available, 0);
    EXPECT_LE(available, MemoryObserver::getMachinePhysicalRAM());
    EXPECT_GT(observer.getUsedRAM(), 0);  // 0 after a failed query alone
    EXPECT_FALSE(observer.willFailToAllocate(0));
    EXPECT_EQ(MemoryObserver::getMachinePhysicalVRAM(), 6);
    EXPECT_EQ(observer.getAvailableVRAM(), 1);
    EXPECT_EQ(simulator::CurrentDevice(), 0);
  }
}

TEST(ThreadsTest, ConcurrentCallsReturnTheirOwnFigures) {
  simulator::Machine machine;
  machine.devices = {{"a", "gfx", 0, 1, 1, 1}, {"b", "gfx", 0, 2, 2, 2}, {"c", "gfx", 0, 3, 3, 3}};
  simulator::Install(machine);
  const int pid = OwnPid();
  // Wine's GlobalMemoryStatusEx keeps its figures for a second, and returns zeros to threads that
  // call it while the first call of the process fills them in.
  ASSERT_GT(MemoryObserver::getMachinePhysicalRAM(), 0);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back(CallEverything, pid);
  }
  for (auto& thread : threads) {
    thread.join();
  }
}

}  // namespace
}  // namespace kestrel::tests

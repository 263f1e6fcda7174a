// Every meter on a thread with a small stack.

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include "utils/cpu_usage.h"
#include "utils/memory_observer.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::GetCpuUsage;
using kestrel_utils::MemoryObserver;

void* CallMeters(void* /*unused*/) {
  const MemoryObserver observer;
  EXPECT_GT(MemoryObserver::getMachinePhysicalRAM(), 0);
  EXPECT_GE(observer.getAvailableRAM(), 0);
  EXPECT_GE(observer.getUsedRAM(), 0);
  EXPECT_FALSE(observer.willFailToAllocate(0));
  EXPECT_GT(MemoryObserver::getProcessUsedRAM(getpid()), 0);
  EXPECT_GE(GetCpuUsage(getpid(), 0), 0.0F);
  return nullptr;
}

// The 16 KiB that the headers promise, plus as much for the start of a thread.
TEST(SmallStackTest, EveryMeterRunsInThePromisedStack) {
  pthread_attr_t attributes{};
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, 32U << 10), 0);
  pthread_t thread{};
  ASSERT_EQ(pthread_create(&thread, &attributes, CallMeters, nullptr), 0);
  EXPECT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

}  // namespace
}  // namespace kestrel::tests

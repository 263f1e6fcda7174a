#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <cerrno>
#include <stdexcept>

#include "platform/platform.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/refused_calls.h"

namespace kestrel::tests {
namespace {

using platform::QueryTotalPhysicalMemory;

// As the filter of a sandbox does.
TEST(LinuxMemoryTest, WhereSysinfoIsRefusedThereIsNoTotal) {
  const Outcome outcome = RunApart([] {
    RefuseCalls(SYS_sysinfo, EPERM);
    if (QueryTotalPhysicalMemory()) {
      throw std::runtime_error("a total was returned");
    }
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

}  // namespace
}  // namespace kestrel::tests

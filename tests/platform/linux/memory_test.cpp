#include <gtest/gtest.h>
#include <sys/sysinfo.h>

#include <cerrno>
#include <optional>

#include "platform/platform.h"

namespace kestrel::tests {
namespace {

using platform::QueryTotalPhysicalMemory;

// What sysinfo returns in this program; it fails if this is not set.
std::optional<struct sysinfo> system_information;

TEST(LinuxMemoryTest, TotalIsInBytes) {
  system_information.emplace();
  system_information->totalram = 3;
  system_information->mem_unit = 4096;
  EXPECT_EQ(QueryTotalPhysicalMemory(), 12288U);
}

// As in a sandbox whose filter refuses the call.
TEST(LinuxMemoryTest, WhereSysinfoFailsThereIsNoTotal) {
  system_information.reset();
  EXPECT_EQ(QueryTotalPhysicalMemory(), std::nullopt);
}

}  // namespace
}  // namespace kestrel::tests

// The program's own definition comes before that of the C library.
extern "C" int sysinfo(struct sysinfo* info) noexcept {
  if (!kestrel::tests::system_information) {
    errno = EPERM;
    return -1;
  }
  *info = *kestrel::tests::system_information;
  return 0;
}

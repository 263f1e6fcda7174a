#include "tests/platform/host_process.h"

#include <unistd.h>

#include <filesystem>
#include <iterator>

namespace kestrel::tests {

int OwnPid() { return getpid(); }

int OpenHandleCount() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return static_cast<int>(std::distance(begin(descriptors), end(descriptors)));
}

}  // namespace kestrel::tests

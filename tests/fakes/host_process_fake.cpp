#include "tests/fakes/platform_fake.h"
#include "tests/platform/host_process.h"

namespace kestrel::tests {

// Returns a pid whose process uses processor time and memory.
int OwnPid() {
  Platform().times_step = 1;
  Platform().resident_bytes = 4096;
  return 1234;
}

int OpenHandleCount() { return Platform().open_handles; }

}  // namespace kestrel::tests

#include "tests/fakes/platform_fake.h"
#include "tests/platform/host_process.h"

namespace kestrel::tests {

// A process at work.
int OwnPid() {
  Platform().times_step = 1;
  Platform().resident_bytes = 4096;
  return 1234;
}

int OpenHandleCount() { return Platform().open_handles; }

}  // namespace kestrel::tests

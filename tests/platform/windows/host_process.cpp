#include "tests/platform/host_process.h"

#include <windows.h>

#include <cstdint>

namespace kestrel::tests {

namespace {

// Handles are multiples of four; the system assigns low ones first.
constexpr std::intptr_t kHandleStep = 4;
constexpr std::intptr_t kHandleLimit = 4096 * kHandleStep;

}  // namespace

int OwnPid() { return static_cast<int>(GetCurrentProcessId()); }

// Tries every possible handle: under Wine GetProcessHandleCount returns 0, and listing the handles
// of the whole system can crash its server.
int OpenHandleCount() {
  int count = 0;
  for (std::intptr_t handle = kHandleStep; handle < kHandleLimit; handle += kHandleStep) {
    DWORD flags = 0;
    void* const asked = reinterpret_cast<HANDLE>(handle);  // NOLINT(performance-no-int-to-ptr)
    count += GetHandleInformation(asked, &flags) != 0 ? 1 : 0;
  }
  return count;
}

}  // namespace kestrel::tests

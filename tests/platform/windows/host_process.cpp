#include "tests/platform/host_process.h"

#include <windows.h>

#include <cstdint>

namespace kestrel::tests {

namespace {

// Handles are multiples of four, and low ones are given first.
constexpr std::intptr_t kHandleStep = 4;
constexpr std::intptr_t kHandleLimit = 4096 * kHandleStep;

}  // namespace

int OwnPid() { return static_cast<int>(GetCurrentProcessId()); }

// Asks for each handle there might be: under Wine GetProcessHandleCount is always 0, and listing
// the handles of the whole system can crash its server.
int OpenHandleCount() {
  int count = 0;
  for (std::intptr_t handle = kHandleStep; handle < kHandleLimit; handle += kHandleStep) {
    DWORD flags = 0;
    count += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != 0 ? 1 : 0;
  }
  return count;
}

}  // namespace kestrel::tests

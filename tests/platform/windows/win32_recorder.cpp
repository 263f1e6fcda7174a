#include "tests/platform/windows/win32_recorder.h"

// psapi.h needs windows.h before it.
#include <psapi.h>

#include <cstdio>

namespace kestrel::tests {

Win32& RecordedWin32() {
  static Win32 win32;
  return win32;
}

namespace {

// Handles of the system are multiples of four, so none has this value.
void* const kProcessHandle = reinterpret_cast<void*>(std::intptr_t{0x1235});  // NOLINT

std::string HandleText(HANDLE handle) { return handle == kProcessHandle ? "" : "wrong handle"; }

void WINAPI RecordGetSystemInfo(SYSTEM_INFO* info) {
  RecordedWin32().calls.emplace_back("GetSystemInfo()");
  *info = RecordedWin32().system;
}

BOOL WINAPI RecordGlobalMemoryStatusEx(MEMORYSTATUSEX* status) {
  Win32& win32 = RecordedWin32();
  win32.calls.push_back("GlobalMemoryStatusEx(" + std::to_string(status->dwLength) + ")");
  if (win32.memory_succeeds) {
    *status = win32.memory;
  }
  return win32.memory_succeeds ? TRUE : FALSE;
}

HANDLE WINAPI RecordOpenProcess(DWORD access, BOOL inherit, DWORD pid) {
  char call[64];
  std::snprintf(call, sizeof(call), "OpenProcess(0x%lx, %d, %lu)", access, inherit, pid);
  RecordedWin32().calls.emplace_back(call);
  return RecordedWin32().open_succeeds ? kProcessHandle : nullptr;
}

BOOL WINAPI RecordGetProcessTimes(HANDLE handle, FILETIME* /*creation*/, FILETIME* /*exit*/,
                                  FILETIME* kernel, FILETIME* user) {
  Win32& win32 = RecordedWin32();
  win32.calls.push_back("GetProcessTimes(" + HandleText(handle) + ")");
  if (win32.times_successes == 0) {
    return FALSE;
  }
  --win32.times_successes;
  *kernel = win32.kernel;
  *user = win32.user;
  return TRUE;
}

BOOL WINAPI RecordGetProcessMemoryInfo(HANDLE handle, PROCESS_MEMORY_COUNTERS* counters,
                                       DWORD size) {
  Win32& win32 = RecordedWin32();
  win32.calls.push_back("K32GetProcessMemoryInfo(" + HandleText(handle) + std::to_string(size) +
                        ")");
  counters->WorkingSetSize = win32.working_set;
  return win32.counters_succeed ? TRUE : FALSE;
}

// The test framework closes handles of its own.
BOOL WINAPI RecordCloseHandle(HANDLE handle) {
  if (handle == kProcessHandle) {
    RecordedWin32().calls.emplace_back("CloseHandle()");
    return TRUE;
  }
  const auto close = reinterpret_cast<decltype(&CloseHandle)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "CloseHandle")));
  return close(handle);
}

}  // namespace

}  // namespace kestrel::tests

// A call of an imported function goes through a pointer of this name. The linker takes it from the
// import library only if the program does not define it.
// NOLINTBEGIN
extern "C" {
extern const decltype(&GetSystemInfo) __imp_GetSystemInfo = &kestrel::tests::RecordGetSystemInfo;
extern const decltype(&GlobalMemoryStatusEx) __imp_GlobalMemoryStatusEx =
    &kestrel::tests::RecordGlobalMemoryStatusEx;
extern const decltype(&OpenProcess) __imp_OpenProcess = &kestrel::tests::RecordOpenProcess;
extern const decltype(&GetProcessTimes) __imp_GetProcessTimes =
    &kestrel::tests::RecordGetProcessTimes;
extern const decltype(&CloseHandle) __imp_CloseHandle = &kestrel::tests::RecordCloseHandle;

// This function is not declared as imported, so it is called by its own name.
BOOL WINAPI K32GetProcessMemoryInfo(HANDLE handle, PROCESS_MEMORY_COUNTERS* counters, DWORD size) {
  return kestrel::tests::RecordGetProcessMemoryInfo(handle, counters, size);
}
}
// NOLINTEND

#include "tests/platform/windows/child_process.h"

#include <sddl.h>

#include <array>
#include <cstdio>
#include <system_error>

namespace kestrel::tests {

namespace {

void Check(bool succeeded, const char* what) {
  if (!succeeded) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
  }
}

}  // namespace

ChildProcess::ChildProcess() { Start(nullptr); }

ChildProcess::ChildProcess(DWORD rights) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "D:(A;;0x%lx;;;WD)", rights);  // WD: everyone
  SECURITY_ATTRIBUTES attributes{};
  attributes.nLength = sizeof(attributes);
  Check(ConvertStringSecurityDescriptorToSecurityDescriptorA(
            text.data(), SDDL_REVISION_1, &attributes.lpSecurityDescriptor, nullptr) != 0,
        "security descriptor");
  Start(&attributes);
  LocalFree(attributes.lpSecurityDescriptor);
}

// The child never runs, so any program will do; that of this test exists.
void ChildProcess::Start(SECURITY_ATTRIBUTES* attributes) {
  std::array<wchar_t, MAX_PATH> program{};
  Check(GetModuleFileNameW(nullptr, program.data(), MAX_PATH) != 0, "own name");
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  Check(CreateProcessW(program.data(), nullptr, attributes, nullptr, FALSE, CREATE_SUSPENDED,
                       nullptr, nullptr, &startup, &process_) != 0,
        "process");
}

void ChildProcess::End() {
  if (process_.hProcess == nullptr) {
    return;
  }
  TerminateProcess(process_.hProcess, 0);
  WaitForSingleObject(process_.hProcess, INFINITE);
  CloseHandle(process_.hThread);
  CloseHandle(process_.hProcess);
  process_.hProcess = nullptr;
}

void ChildProcess::EndForGood() {
  End();
  while (void* const process = OpenProcess(SYNCHRONIZE, FALSE, process_.dwProcessId)) {
    CloseHandle(process);
    Sleep(1);
  }
}

}  // namespace kestrel::tests

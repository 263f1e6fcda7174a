#pragma once

#include <windows.h>

namespace kestrel::tests {

// A child process that is created suspended and never runs.
class ChildProcess {
 public:
  // With `rights`, it can be opened with no other access rights.
  ChildProcess();
  explicit ChildProcess(DWORD rights);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() { End(); }

  [[nodiscard]] int pid() const { return static_cast<int>(process_.dwProcessId); }

  // Ends the process and closes its handles. Others may still have it open.
  void End();
  // Ends the process and waits until the system has removed it.
  void EndForGood();

 private:
  void Start(SECURITY_ATTRIBUTES* attributes);

  PROCESS_INFORMATION process_{};
};

}  // namespace kestrel::tests

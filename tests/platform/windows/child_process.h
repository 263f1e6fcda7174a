#pragma once

#include <windows.h>

namespace kestrel::tests {

// A process that is there but never comes to run, until it is told to end.
class ChildProcess {
 public:
  // With `rights`, nobody may open it with any but those.
  ChildProcess();
  explicit ChildProcess(DWORD rights);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() { End(); }

  [[nodiscard]] int pid() const { return static_cast<int>(process_.dwProcessId); }

  // Ends the process and lets go of it; others may still hold it.
  void End();
  // The same, and waits until nothing of it is left, which takes the system a moment.
  void EndForGood();

 private:
  void Start(SECURITY_ATTRIBUTES* attributes);

  PROCESS_INFORMATION process_{};
};

}  // namespace kestrel::tests

#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

namespace kestrel::tests {

// A process of its own that runs `body` until it is told to end.
class ChildProcess {
 public:
  explicit ChildProcess(const std::function<void()>& body);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() { KillAndReap(); }

  [[nodiscard]] pid_t pid() const { return pid_; }

  // Waits until the whole process has ended; it stays a zombie.
  void AwaitEnd() const;
  // Waits until its first thread has ended, whatever others do.
  void AwaitFirstThreadsEnd() const;
  void KillAndReap();

 private:
  pid_t pid_;
  bool reaped_ = false;
};

// How a process that ran to its end did.
struct Outcome {
  bool ran = false;         // its body came to its end
  std::string diagnostics;  // all that it wrote to standard error
};

// Runs `body` in a child, whose mounts, limits and identity it may spoil as it likes. An exception
// or a crash shows as `ran` being false.
Outcome RunApart(const std::function<void()>& body);

// The same, as process 1 of a process namespace of its own, with "/proc" mounted to match and
// changes of mounts kept inside. Needs root, or leave for user namespaces.
Outcome RunInOwnNamespaces(const std::function<void()>& body);

}  // namespace kestrel::tests

#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <functional>
#include <string>

namespace kestrel::tests {

// A child process that runs `body` until it is killed.
class ChildProcess {
 public:
  explicit ChildProcess(const std::function<void()>& body);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() { KillAndReap(); }

  [[nodiscard]] pid_t pid() const { return pid_; }

  // Waits until the whole process has ended. It remains a zombie.
  void AwaitEnd() const;
  // Waits until its main thread has ended; other threads may go on.
  void AwaitMainThreadsEnd() const;
  void KillAndReap();

 private:
  pid_t pid_;
  bool reaped_ = false;
};

// The outcome of a process that has ended.
struct Outcome {
  bool ran = false;         // its body returned
  std::string diagnostics;  // all that it wrote to standard error
};

// Runs `body` in a child process, whose limits and identity it may change. No descriptors are open
// but the standard streams. `ran` is false if `body` throws or crashes.
Outcome RunApart(const std::function<void()>& body);

// Lowers the limit of file descriptors so that this process can open `count` more. Throws if that
// fails.
void LeaveDescriptors(unsigned count);

// Runs `body` as process 1 of a new process namespace with a "/proc" of its own; its mounts are
// visible in that namespace alone. Needs root, or permission to create user namespaces.
Outcome RunInOwnNamespaces(const std::function<void()>& body);

// Skips the test where that is forbidden, as it is in most containers. The names of such suites say
// what they need, so that ctest's list of skipped tests gives the reason.
class NamespacesTest : public testing::Test {
 protected:
  void SetUp() override;
};

}  // namespace kestrel::tests

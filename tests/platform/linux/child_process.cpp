#include "tests/platform/linux/child_process.h"

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <system_error>

namespace kestrel::tests {

namespace {

void Check(bool succeeded, const char* what) {
  if (!succeeded) {
    throw std::system_error(errno, std::generic_category(), what);
  }
}

// Runs `body` and ends this process, without the exit handlers of the test program.
[[noreturn]] void RunAndExit(const std::function<void()>& body) {
  try {
    body();
  } catch (const std::exception& error) {
    std::cerr << error.what() << std::endl;
    _exit(1);
  }
  _exit(0);
}

int AwaitStatus(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

std::string ReadToEnd(int descriptor) {
  std::string text;
  std::array<char, 4096> buffer;
  ssize_t count = 0;
  while ((count = read(descriptor, buffer.data(), buffer.size())) > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return text;
}

void WriteFile(const char* path, const std::string& text) {
  std::ofstream file(path);
  file << text << std::flush;
  Check(file.good(), path);
}

// Leaves the standard streams alone open, standard input as "/dev/null": whatever starts the tests
// may have left others open, or closed standard input, and the numbers of new descriptors would
// differ. Kernels before 5.9 lack the call and leave the others open.
void KeepStandardStreams() {
  const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
  dup2(input, STDIN_FILENO);
  syscall(SYS_close_range, STDERR_FILENO + 1U, ~0U, 0U);
}

// Other users than root may create these namespaces only in a user namespace of their own.
void EnterNamespaces() {
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (unshare(CLONE_NEWPID | CLONE_NEWNS) != 0) {
    Check(unshare(CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNS) == 0, "unshare");
    WriteFile("/proc/self/setgroups", "deny");
    WriteFile("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
    WriteFile("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
  }
  // Later mounts over "/proc" do not propagate out of this namespace.
  Check(mount(nullptr, "/proc", nullptr, MS_PRIVATE, nullptr) == 0, "mount private");
}

}  // namespace

ChildProcess::ChildProcess(const std::function<void()>& body) : pid_(fork()) {
  Check(pid_ >= 0, "fork");
  if (pid_ == 0) {
    RunAndExit(body);
  }
}

void ChildProcess::AwaitEnd() const {
  siginfo_t info{};
  while (waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
  }
}

void ChildProcess::AwaitMainThreadsEnd() const {
  const std::string path = "/proc/" + std::to_string(pid_) + "/stat";
  std::string text;
  do {
    std::ifstream stat(path);
    std::getline(stat, text);
  } while (text.find(") Z ") == std::string::npos);
}

void ChildProcess::KillAndReap() {
  if (!reaped_) {
    kill(pid_, SIGKILL);
    AwaitStatus(pid_);
    reaped_ = true;
  }
}

Outcome RunApart(const std::function<void()>& body) {
  std::array<int, 2> ends{};
  Check(pipe(ends.data()) == 0, "pipe");
  const pid_t pid = fork();
  Check(pid >= 0, "fork");
  if (pid == 0) {
    dup2(ends[1], STDERR_FILENO);
    KeepStandardStreams();
    RunAndExit(body);
  }
  close(ends[1]);
  Outcome outcome;
  outcome.diagnostics = ReadToEnd(ends[0]);
  close(ends[0]);
  outcome.ran = AwaitStatus(pid) == 0;
  return outcome;
}

void LeaveDescriptors(unsigned count) {
  const int next = dup(STDERR_FILENO);
  Check(next >= 0, "dup");
  close(next);
  const rlim_t limit = static_cast<rlim_t>(next) + count;
  const rlimit limits{limit, limit};
  Check(setrlimit(RLIMIT_NOFILE, &limits) == 0, "setrlimit");
}

Outcome RunInOwnNamespaces(const std::function<void()>& body) {
  return RunApart([&body] {
    EnterNamespaces();
    const pid_t init = fork();  // the first child is process 1
    Check(init >= 0, "fork");
    if (init == 0) {
      RunAndExit([&body] {
        Check(mount("proc", "/proc", "proc", 0, nullptr) == 0, "mount /proc");
        body();
      });
    }
    Check(AwaitStatus(init) == 0, "the body");
  });
}

void NamespacesTest::SetUp() {
  const Outcome outcome = RunInOwnNamespaces([] {});
  if (!outcome.ran) {
    GTEST_SKIP() << "This machine allows no namespaces here: " << outcome.diagnostics;
  }
}

}  // namespace kestrel::tests

#include "bench/trace.h"

#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "bench/allocation_count.h"
#include "bench/shared_value.h"

namespace kestrel::bench {

namespace {

// No system call has this number. The child makes it before and after the call.
constexpr long kMarker = 1'000'000;

[[noreturn]] void RunTraced(const std::function<void()>& call, bool warm_up,
                            std::uint64_t& allocations) {
  if (warm_up) {
    call();
  }
  ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
  std::raise(SIGSTOP);
  const std::uint64_t before = AllocationCount();
  syscall(kMarker);
  call();
  syscall(kMarker);
  allocations = AllocationCount() - before;
  _exit(0);
}

// Its own process is another one for each reader.
std::string WithoutProcess(std::string path, pid_t process) {
  const std::string own = "/proc/" + std::to_string(process);
  const std::string thread = own + "/task/" + std::to_string(process);
  if (path.compare(0, thread.size() + 1, thread + "/") == 0) {
    return path.replace(0, thread.size(), "/proc/thread-self");
  }
  if (path.compare(0, own.size() + 1, own + "/") == 0) {
    return path.replace(0, own.size(), "/proc/self");
  }
  return path;
}

class Recorder {
 public:
  explicit Recorder(pid_t process) : process_(process) {}

  void Enter(std::uint64_t number, std::uint64_t first_argument) {
    number_ = number;
    descriptor_ = static_cast<std::int64_t>(first_argument);
    if (number == kMarker) {
      ++markers_;
    } else if (markers_ == 1) {
      ++trace_.system_calls;
    }
  }

  void Leave(std::int64_t result) {
    if (markers_ != 1 || result < 0) {
      return;
    }
    if (number_ == SYS_open || number_ == SYS_openat || number_ == SYS_openat2) {
      Open(result);
    } else if ((number_ == SYS_read || number_ == SYS_pread64) && open_.count(descriptor_) != 0) {
      trace_.files[open_[descriptor_]].bytes += static_cast<std::size_t>(result);
    } else if (number_ == SYS_close) {
      open_.erase(descriptor_);
    }
  }

  [[nodiscard]] const Trace& trace() const { return trace_; }

 private:
  void Open(std::int64_t descriptor) {
    const std::string link =
        "/proc/" + std::to_string(process_) + "/fd/" + std::to_string(descriptor);
    std::array<char, 4096> path;
    const ssize_t size = readlink(link.c_str(), path.data(), path.size());
    struct stat status {};
    if (size > 0 && stat(link.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
      open_[descriptor] = trace_.files.size();
      const std::string target(path.data(), static_cast<std::size_t>(size));
      trace_.files.push_back({WithoutProcess(target, process_)});
    }
  }

  pid_t process_;
  Trace trace_;
  std::map<std::int64_t, std::size_t> open_;  // from descriptors to places in trace_.files
  std::uint64_t number_ = 0;
  std::int64_t descriptor_ = 0;
  int markers_ = 0;
};

void Record(pid_t child, Recorder& recorder) {
  int status = 0;
  int signal = 0;
  for (;;) {
    if (ptrace(PTRACE_SYSCALL, child, nullptr, signal) != 0 || waitpid(child, &status, 0) < 0 ||
        !WIFSTOPPED(status)) {
      return;
    }
    const bool is_system_call = WSTOPSIG(status) == (SIGTRAP | 0x80);
    signal = is_system_call ? 0 : WSTOPSIG(status);
    __ptrace_syscall_info info{};
    if (!is_system_call || ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof(info), &info) < 0) {
      continue;
    }
    if (info.op == PTRACE_SYSCALL_INFO_ENTRY) {
      recorder.Enter(info.entry.nr, info.entry.args[0]);
    } else if (info.op == PTRACE_SYSCALL_INFO_EXIT) {
      recorder.Leave(info.exit.rval);
    }
  }
}

}  // namespace

Trace TraceCall(const std::function<void()>& call, bool warm_up) {
  const SharedValue<std::uint64_t> allocations;
  const pid_t child = fork();
  if (child == 0) {
    RunTraced(call, warm_up, *allocations);
  }
  int status = 0;
  if (waitpid(child, &status, 0) != child || !WIFSTOPPED(status) ||
      ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL) != 0) {
    std::perror("kestrelcore_bench: cannot trace a child process");
    std::exit(1);
  }
  Recorder recorder(child);
  Record(child, recorder);
  Trace trace = recorder.trace();
  trace.allocations = *allocations;
  return trace;
}

}  // namespace kestrel::bench

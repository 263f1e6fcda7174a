#include "tests/attack/child.h"

#include <poll.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <new>
#include <system_error>

#include "tests/attack/last_place.h"

namespace kestrel::tests {

namespace {

constexpr unsigned kTimeoutSeconds = 60;
constexpr int kMostDescriptors = 256;

// Written by the child, read by its parent. In shared memory, because the system calls that the
// child would need to send it may be the ones that fail.
struct Report {
  int leaked;
  long allocations;
  PlaceText place;
  std::array<char, 16384> first;
  std::array<char, 16384> again;
};

void Check(bool succeeded, const char* what) {
  if (!succeeded) {
    throw std::system_error(errno, std::generic_category(), what);
  }
}

// One system call, which no attack lets fail, finds all.
int OpenDescriptors() {
  std::array<pollfd, kMostDescriptors> all{};
  for (int i = 0; i < kMostDescriptors; ++i) {
    all[static_cast<std::size_t>(i)].fd = i;
  }
  poll(all.data(), all.size(), 0);
  return static_cast<int>(std::count_if(
      all.begin(), all.end(), [](const pollfd& entry) { return (entry.revents & POLLNVAL) == 0; }));
}

void Pad(const Plan& plan) {
  for (int i = 0; i < plan.padding; ++i) {
    syscall(plan.system_call, -1, -1, -1, -1, -1, -1);
  }
}

const char* Make(const Call& call, Pids pids) {
  try {
    call.make(pids);
    return nullptr;
  } catch (const std::bad_alloc&) {
    return "bad_alloc";
  } catch (...) {
    return "exception";
  }
}

void Write(std::array<char, 16384>& field, const std::string& text) {
  field[text.copy(field.data(), field.size() - 1)] = '\0';
}

// Makes the call as planned, then once more without a fault.
void Attack(const Call& call, const Plan& plan, Report& report) {
  const Pids pids{plan.pid, getpid()};
  if (plan.warm) {
    Make(call, pids);
  }
  const int before = OpenDescriptors();
  Pad(plan);
  syscall(SYS_getppid);
  ArmAllocations(plan.allocations);
  const char* const thrown = Make(call, pids);
  report.allocations = DisarmAllocations();
  syscall(SYS_getppid);
  report.leaked = OpenDescriptors() - before;
  Write(report.first, thrown != nullptr ? thrown : call.text());
  const char* const thrown_again = Make(call, pids);
  Write(report.again, thrown_again != nullptr ? thrown_again : call.text());
}

std::string EndOf(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    Check(errno == EINTR, "waitpid");
  }
  if (WIFSIGNALED(status)) {
    return WTERMSIG(status) == SIGALRM ? "timeout" : "signal " + std::to_string(WTERMSIG(status));
  }
  return "exit " + std::to_string(WEXITSTATUS(status));
}

std::string Content(int file) {
  std::string content(static_cast<std::size_t>(std::max<off_t>(lseek(file, 0, SEEK_END), 0)), '\0');
  const ssize_t size = pread(file, content.data(), content.size(), 0);
  content.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
  return content;
}

}  // namespace

Outcome RunInChild(const Call& call, const Plan& plan) {
  void* const shared =
      mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  Check(shared != MAP_FAILED, "mmap");
  Report& report = *static_cast<Report*>(shared);
  const int error = memfd_create("standard error", MFD_CLOEXEC);
  Check(error >= 0, "memfd_create");
  const pid_t child = fork();
  Check(child >= 0, "fork");
  if (child == 0) {
    alarm(kTimeoutSeconds);
    dup2(error, STDERR_FILENO);
    RecordLastPlace(report.place);
    Attack(call, plan, report);
    _exit(0);
  }
  std::string end = EndOf(child);
  if (report.place[0] != '\0') {
    end.append(" in ").append(report.place.data());
  }
  const Outcome outcome = {child,
                           end,
                           report.leaked,
                           report.allocations,
                           report.first.data(),
                           report.again.data(),
                           Content(error)};
  close(error);
  munmap(shared, sizeof(Report));
  return outcome;
}

}  // namespace kestrel::tests

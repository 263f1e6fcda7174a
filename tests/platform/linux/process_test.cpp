// Every kind of process that Linux has, measured by the native layer.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/platform.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/fake_time.h"
#include "tests/platform/linux/faked_reads.h"
#include "tests/platform/linux/refused_calls.h"

namespace kestrel::tests {
namespace {

using platform::Process;
using platform::ProcessRights;

void Idle() {
  while (true) {
    pause();
  }
}

bool OpensAs(int pid) {
  const bool opens = Process::Open(pid, ProcessRights::kTimes).has_value();
  EXPECT_EQ(opens, Process::Open(pid, ProcessRights::kMemory).has_value());
  return opens;
}

std::optional<platform::ProcessTimes> TimesOf(int pid) {
  const auto process = Process::Open(pid, ProcessRights::kTimes);
  return process ? process->Times() : std::nullopt;
}

std::optional<std::uint64_t> ResidentBytesOf(int pid) {
  const auto process = Process::Open(pid, ProcessRights::kMemory);
  return process ? process->ResidentBytes() : std::nullopt;
}

TEST(LinuxProcessTest, IdleChildIsMeasured) {
  const ChildProcess child(Idle);
  EXPECT_TRUE(TimesOf(child.pid()));
  EXPECT_GT(ResidentBytesOf(child.pid()).value_or(0), 0U);
}

TEST(LinuxProcessTest, ThreadIdDoesNotOpen) {
  std::atomic<pid_t> thread_id = 0;
  std::atomic<bool> done = false;
  std::thread thread([&] {
    // The kernel accepts a thread's own id for the clock of its process.
    EXPECT_FALSE(OpensAs(gettid()));
    thread_id = gettid();
    while (!done) {
      std::this_thread::yield();
    }
  });
  while (thread_id == 0) {
    std::this_thread::yield();
  }
  EXPECT_FALSE(OpensAs(thread_id));
  done = true;
  thread.join();
}

// The id of a process clock contains the pid shifted by three bits: these pids share the clock id.
TEST(LinuxProcessTest, PidsThatShareTheClockIdDoNotOpen) {
  EXPECT_FALSE(OpensAs(getpid() + (1 << 29)));
  EXPECT_FALSE(OpensAs(getpid() + (1 << 30)));
}

TEST(LinuxProcessTest, ZombieHasItsFinalTimesAndNoMemory) {
  const ChildProcess child([] {});
  child.AwaitEnd();
  const auto process = Process::Open(child.pid(), ProcessRights::kTimes);
  ASSERT_TRUE(process);
  auto first = process->Times();
  auto second = process->Times();
  // The kernel may still count the last moment of a process that has just ended.
  while (first && second && first->user != second->user) {
    first = second;
    second = process->Times();
  }
  EXPECT_TRUE(first);
  EXPECT_TRUE(second);
  EXPECT_EQ(ResidentBytesOf(child.pid()), 0U);
}

TEST(LinuxProcessTest, ReapedProcessDoesNotOpen) {
  ChildProcess child(Idle);
  child.KillAndReap();
  EXPECT_FALSE(OpensAs(child.pid()));
}

TEST(LinuxProcessTest, ProcessReapedWhileOpenReturnsNoFigures) {
  ChildProcess child(Idle);
  const auto times = Process::Open(child.pid(), ProcessRights::kTimes);
  const auto memory = Process::Open(child.pid(), ProcessRights::kMemory);
  ASSERT_TRUE(times);
  ASSERT_TRUE(memory);
  ASSERT_TRUE(times->Times());
  child.KillAndReap();
  EXPECT_FALSE(times->Times());
  EXPECT_FALSE(memory->ResidentBytes());
}

// Its own statm is read, that of its only thread, and its own again.
TEST(LinuxProcessTest, ProcessReapedWhileItsThreadsAreReadReturnsNoFigure) {
  const ChildProcess child([] {});
  child.AwaitEnd();
  const auto process = Process::Open(child.pid(), ProcessRights::kMemory);
  ASSERT_TRUE(process);
  FakedReads() = {};
  FakedReads().errors = {0, 0, ESRCH};
  const auto bytes = process->ResidentBytes();
  FakedReads() = {};
  EXPECT_EQ(bytes, std::nullopt);
}

TEST(LinuxProcessTest, ProcessEndedWhileOpenKeepsItsTimesUntilReaped) {
  const ChildProcess child(Idle);
  const auto process = Process::Open(child.pid(), ProcessRights::kTimes);
  ASSERT_TRUE(process);
  kill(child.pid(), SIGKILL);
  child.AwaitEnd();
  EXPECT_TRUE(process->Times());
}

class LinuxProcessNeedsNamespacesTest : public NamespacesTest {};

// Writing ns_last_pid sets the next pid, so the reuse is certain.
TEST_F(LinuxProcessNeedsNamespacesTest, HandleOfReusedPidReturnsNoFigures) {
  const auto outcome = RunInOwnNamespaces([] {
    ChildProcess first(Idle);
    const auto times = Process::Open(first.pid(), ProcessRights::kTimes);
    const auto memory = Process::Open(first.pid(), ProcessRights::kMemory);
    const bool opened = times && memory;
    first.KillAndReap();
    std::ofstream("/proc/sys/kernel/ns_last_pid") << first.pid() - 1;
    const ChildProcess second(Idle);
    if (!opened || second.pid() != first.pid()) {
      throw std::runtime_error("the pid was not reused");
    }
    if (times->Times() || memory->ResidentBytes()) {
      throw std::runtime_error("an old handle returned figures of the new process");
    }
    if (!TimesOf(second.pid())) {
      throw std::runtime_error("the new process was not measured");
    }
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

// Ends the main thread; another one goes on and holds the memory.
void LiveWithoutMainThread() {
  static std::vector<char> memory(32U << 20, 'x');
  std::thread([] { Idle(); }).detach();
  syscall(SYS_exit, 0);  // pthread_exit would unwind through the test program's own handlers
}

TEST(LinuxProcessTest, ProcessWithoutMainThreadIsMeasuredInFull) {
  const ChildProcess child(LiveWithoutMainThread);
  child.AwaitMainThreadsEnd();
  EXPECT_TRUE(TimesOf(child.pid()));
  EXPECT_GE(ResidentBytesOf(child.pid()).value_or(0), 32U << 20);
}

// In a "/proc" of another namespace it is another path than those of other processes.
TEST(LinuxProcessTest, OwnProcessWithoutMainThreadIsMeasured) {
  const Outcome outcome = RunApart([] {
    std::thread([] {
      std::uint64_t pages = 1;
      while (pages != 0) {
        std::ifstream("/proc/self/statm") >> pages;
      }
      _exit(ResidentBytesOf(getpid()).value_or(0) > 0 ? 0 : 1);
    }).detach();
    syscall(SYS_exit, 0);
  });
  EXPECT_TRUE(outcome.ran);
}

// Its threads are read one by one; that needs two more descriptors.
TEST(LinuxProcessTest, ProcessWhoseThreadsCannotBeOpenedReturnsNoFigure) {
  const ChildProcess child(LiveWithoutMainThread);
  child.AwaitMainThreadsEnd();
  for (const unsigned left : {1U, 2U}) {
    const auto outcome = RunApart([&child, left] {
      LeaveDescriptors(left);
      const auto process = Process::Open(child.pid(), ProcessRights::kMemory);
      if (!process || process->ResidentBytes()) {
        throw std::runtime_error("a figure was returned");
      }
    });
    EXPECT_TRUE(outcome.ran) << left << " left: " << outcome.diagnostics;
  }
}

TEST(LinuxProcessTest, ProcessWithItsMainThreadNeedsNoMoreDescriptors) {
  const auto outcome = RunApart([] {
    LeaveDescriptors(1);
    const auto process = Process::Open(getppid(), ProcessRights::kMemory);
    if (!process || !process->ResidentBytes()) {
      throw std::runtime_error("no figure was returned");
    }
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

// The handle has the first free descriptor, the folder of the threads the second, and the statm of
// each thread in turn the third.
Outcome ReadMemoryWhileThreadsFailWith(int error, pid_t pid,
                                       std::optional<std::uint64_t> expected) {
  return RunApart([error, pid, expected] {
    const int first = dup(STDERR_FILENO);
    close(first);
    const auto process = Process::Open(pid, ProcessRights::kMemory);
    RefuseCalls(SYS_pread64, error, static_cast<std::uint32_t>(first + 2));
    errno = ESRCH;  // as an earlier call may leave it
    if (!process || process->ResidentBytes() != expected) {
      throw std::runtime_error("another figure was returned");
    }
  });
}

// With error 0 the read succeeds, and the text is empty.
TEST(LinuxProcessTest, ProcessWhoseThreadsCannotBeReadReturnsNoFigure) {
  const ChildProcess child(LiveWithoutMainThread);
  child.AwaitMainThreadsEnd();
  for (const int error : {EIO, ENOMEM, 0}) {
    const Outcome outcome = ReadMemoryWhileThreadsFailWith(error, child.pid(), std::nullopt);
    EXPECT_TRUE(outcome.ran) << error << ": " << outcome.diagnostics;
  }
}

TEST(LinuxProcessTest, ThreadsThatEndBeforeTheyAreOpenedHoldNoMemory) {
  const ChildProcess child(LiveWithoutMainThread);
  child.AwaitMainThreadsEnd();
  const Outcome outcome = RunApart([&child] {
    const int first = dup(STDERR_FILENO);
    close(first);
    const auto process = Process::Open(child.pid(), ProcessRights::kMemory);
    RefuseCalls(SYS_openat, ENOENT, static_cast<std::uint32_t>(first + 1));
    if (!process || process->ResidentBytes() != 0U) {
      throw std::runtime_error("another figure was returned");
    }
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

TEST(LinuxProcessTest, ThreadsThatEndBeforeTheyAreReadHoldNoMemory) {
  const ChildProcess child(LiveWithoutMainThread);
  child.AwaitMainThreadsEnd();
  const Outcome outcome = ReadMemoryWhileThreadsFailWith(ESRCH, child.pid(), 0);
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

// As seccomp filters and security modules do. The kernel's own answer is then not known.
TEST(LinuxProcessTest, WhereThreadGroupProbeIsRefusedOnlyProcessesAreMeasured) {
  for (const int error : {EACCES, EPERM, ENOSYS}) {
    const Outcome outcome = RunApart([error] {
      RefuseCalls(SYS_clock_getres, error);
      if (!OpensAs(getppid()) || !TimesOf(getppid())) {
        throw std::runtime_error("a process was not measured");
      }
      bool thread_opened = false;
      std::thread([&] { thread_opened = OpensAs(gettid()); }).join();
      if (thread_opened) {
        throw std::runtime_error("a thread opened");
      }
    });
    EXPECT_TRUE(outcome.ran) << error << ": " << outcome.diagnostics;
  }
}

TEST(LinuxProcessTest, WhereNeitherProbeNorStatusCanBeReadNothingOpens) {
  const Outcome outcome = RunApart([] {
    RefuseCalls(SYS_clock_getres, EPERM);
    LeaveDescriptors(1);  // for the handle
    if (OpensAs(getppid())) {
      throw std::runtime_error("a process opened");
    }
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

// The kernel returns these if no process has the id, whatever "/proc" contains.
TEST(LinuxProcessTest, WhereThreadGroupProbeFindsNoProcessNothingOpens) {
  for (const int error : {ESRCH, EINVAL}) {
    const Outcome outcome = RunApart([error] {
      RefuseCalls(SYS_clock_getres, error);
      if (OpensAs(getppid())) {
        throw std::runtime_error("a process opened");
      }
    });
    EXPECT_TRUE(outcome.ran) << error << ": " << outcome.diagnostics;
  }
}

// The "/proc" that remains visible is that of the parent namespace. Process 1 there is another one,
// but "self" is the calling process, which is process 1 here.
TEST_F(LinuxProcessNeedsNamespacesTest, ProcOfAnotherNamespaceOpensOwnProcessAlone) {
  const auto outcome = RunInOwnNamespaces([] {
    const ChildProcess child(Idle);
    if (umount("/proc") != 0 || OpensAs(child.pid())) {
      throw std::runtime_error("a process of another namespace was opened");
    }
    static const std::vector<char> memory(64U << 20, 'x');
    const auto own = Process::Open(getpid(), ProcessRights::kMemory);
    if (!own || own->ResidentBytes().value_or(0) < memory.size()) {
      throw std::runtime_error("the own process was not measured");
    }
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

// As a security module may do, makes opening fail with EACCES: a device on a mount without devices.
void ForbidToOpen(const std::string& path) {
  constexpr unsigned long kWithoutDevices = MS_NODEV | MS_NOSUID | MS_NOEXEC;
  if (mount("/dev/null", path.c_str(), nullptr, MS_BIND, nullptr) != 0 ||
      mount(nullptr, path.c_str(), nullptr, MS_REMOUNT | MS_BIND | kWithoutDevices, nullptr) != 0) {
    throw std::runtime_error("mount " + path);
  }
}

TEST_F(LinuxProcessNeedsNamespacesTest, TimesNeedOneFileThatCanBeOpened) {
  for (const std::string file : {"oom_score_adj", "statm"}) {
    const auto outcome = RunInOwnNamespaces([&file] {
      const ChildProcess child(Idle);
      ForbidToOpen("/proc/" + std::to_string(child.pid()) + "/" + file);
      if (!TimesOf(child.pid())) {
        throw std::runtime_error("the times were not read");
      }
      if (ResidentBytesOf(child.pid()).has_value() == (file == "statm")) {
        throw std::runtime_error("the memory is not that of statm");
      }
    });
    EXPECT_TRUE(outcome.ran) << file << ": " << outcome.diagnostics;
  }
}

TEST(LinuxProcessTest, OwnTimesNeedNoDescriptor) {
  const auto outcome = RunApart([] {
    LeaveDescriptors(0);
    const auto process = Process::Open(getpid(), ProcessRights::kTimes);
    if (!process || !process->Times() || Process::Open(getpid(), ProcessRights::kMemory)) {
      throw std::runtime_error("the times of the own process were not measured");
    }
  });
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

TEST(LinuxProcessTest, ProcessNamedWithBlanksAndParenthesesIsMeasured) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const ChildProcess child([&ends] {
    prctl(PR_SET_NAME, "a) R (b 0 0 0");
    static_cast<void>(!write(ends[1], "x", 1));
    Idle();
  });
  char ready = 0;
  ASSERT_EQ(read(ends[0], &ready, 1), 1);
  close(ends[0]);
  close(ends[1]);
  EXPECT_TRUE(TimesOf(child.pid()));
  EXPECT_GT(ResidentBytesOf(child.pid()).value_or(0), 0U);
}

std::uint64_t InTimeUnits(const timespec& time) {
  return static_cast<std::uint64_t>(time.tv_sec) * 10'000'000 +
         static_cast<std::uint64_t>(time.tv_nsec) / 100;
}

TEST(LinuxProcessTest, TimesAreInUnitsOf100Nanoseconds) {
  const auto process = Process::Open(getpid(), ProcessRights::kTimes);
  ASSERT_TRUE(process);
  FakeTime() = {};
  FakeTime().process_time = {3, 999'999'900};
  const auto times = process->Times();
  FakeTime() = {};
  ASSERT_TRUE(times);
  EXPECT_EQ(times->kernel + times->user, 39'999'999U);
}

// The clock of a process that has ended stands still.
TEST(LinuxProcessTest, TimesOfAnotherProcessAreThoseOfItsClock) {
  const ChildProcess child([] {
    // To fill it takes time of the user and of the kernel.
    static const std::vector<char> memory(64U << 20, 'x');
  });
  child.AwaitEnd();
  clockid_t clock{};
  timespec before{};
  timespec after{};
  ASSERT_EQ(clock_getcpuclockid(child.pid(), &clock), 0);
  // The kernel may still count the last moment of a process that has just ended.
  ASSERT_EQ(clock_gettime(clock, &before), 0);
  const auto times = TimesOf(child.pid());
  ASSERT_EQ(clock_gettime(clock, &after), 0);
  ASSERT_TRUE(times);
  EXPECT_LE(InTimeUnits(before), times->kernel + times->user);
  EXPECT_LE(times->kernel + times->user, InTimeUnits(after));
}

// The two readings enclose the process's own clock, which is finer than the ticks of
// /proc/<pid>/stat.
TEST(LinuxProcessTest, TimesMatchTheClockOfTheProcess) {
  const auto process = Process::Open(getpid(), ProcessRights::kTimes);
  ASSERT_TRUE(process);
  const auto first = process->Times();
  timespec own{};
  ASSERT_EQ(clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &own), 0);
  const auto second = process->Times();
  ASSERT_TRUE(first);
  ASSERT_TRUE(second);
  EXPECT_LE(first->kernel + first->user, InTimeUnits(own));
  EXPECT_LE(InTimeUnits(own), second->kernel + second->user);
}

}  // namespace
}  // namespace kestrel::tests

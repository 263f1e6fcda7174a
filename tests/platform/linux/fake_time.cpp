#include "tests/platform/linux/fake_time.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

struct pollfd;

namespace kestrel::tests {

TimeFake& FakeTime() {
  static TimeFake& fake = *new TimeFake;  // the clocks are also read by static destructors
  return fake;
}

}  // namespace kestrel::tests

using kestrel::tests::FakeTime;

// The program's own definitions come before those of the C library. <poll.h> is not included: its
// poll is inline where the C library checks arguments, and could then not be defined here.
extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
  const bool of_process = clock < 0 || clock == CLOCK_PROCESS_CPUTIME_ID;
  const auto& fake = of_process ? FakeTime().process_time : FakeTime().now;
  if (fake && (of_process || clock == CLOCK_MONOTONIC)) {
    *time = *fake;
    return 0;
  }
  return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
}

int clock_nanosleep(clockid_t clock, int flags, const timespec* request, timespec* left) {
  if (!FakeTime().sleeps && clock == CLOCK_MONOTONIC && flags == TIMER_ABSTIME) {
    FakeTime().deadlines.push_back(*request);
    return FakeTime().sleep_error;
  }
  const long result = syscall(SYS_clock_nanosleep, clock, flags, request, left);
  return result == 0 ? 0 : errno;
}

int poll(pollfd* files, unsigned long count, int timeout) {
  if (!FakeTime().sleeps && count == 0) {
    FakeTime().timeouts.push_back(timeout);
    return 0;
  }
  return static_cast<int>(syscall(SYS_poll, files, count, timeout));
}

}  // extern "C"

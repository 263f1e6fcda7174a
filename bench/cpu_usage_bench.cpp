// The cost of a call next to its interval, which is 0 here.

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "bench/comparison.h"
#include "utils/cpu_usage.h"

namespace kestrel::bench {

namespace {

long Nanoseconds(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return time.tv_sec * 1'000'000'000 + time.tv_nsec;
}

// The clock of the process and that of the wall, at both ends.
template <int (*kProcess)()>
double ReadTwoClocksTwice() {
  static const clockid_t process = [] {
    clockid_t clock{};
    clock_getcpuclockid(kProcess(), &clock);
    return clock;
  }();
  const long used = Nanoseconds(process);
  const long start = Nanoseconds(CLOCK_MONOTONIC);
  const long used_since = Nanoseconds(process) - used;
  return static_cast<double>(used_since) /
         static_cast<double>(Nanoseconds(CLOCK_MONOTONIC) - start);
}

// User and system time in clock ticks: fields 14 and 15 of proc_pid_stat(5). The second field, the
// command in parentheses, may contain spaces.
long TicksOfStat(int process) {
  std::array<char, 1024> text{};
  std::snprintf(text.data(), text.size(), "/proc/%d/stat", process);
  const int stat = open(text.data(), O_RDONLY | O_CLOEXEC);
  const ssize_t size = read(stat, text.data(), text.size() - 1);
  close(stat);
  const char* field = size > 0 ? std::strrchr(text.data(), ')') : nullptr;
  for (int skipped = 0; field != nullptr && skipped < 12; ++skipped) {
    field = std::strchr(field + 1, ' ');
  }
  if (field == nullptr) {
    return 0;
  }
  char* rest = nullptr;
  const long user = std::strtol(field, &rest, 10);
  return user + std::strtol(rest, nullptr, 10);
}

double ReadStatTwice(int process) {
  const long ticks = TicksOfStat(process);
  const long start = Nanoseconds(CLOCK_MONOTONIC);
  const long ticks_since = TicksOfStat(process) - ticks;
  return static_cast<double>(ticks_since) /
         static_cast<double>(Nanoseconds(CLOCK_MONOTONIC) - start);
}

const bool added[] = {
    ComparePerProcess("GetCpuUsage", "kestrelcore",
                      [](int process) { return kestrel_utils::GetCpuUsage(process, 0); }),
    ComparePerProcess("GetCpuUsage", "raw stat", ReadStatTwice),
    Compare("GetCpuUsage, own process", "limit", ReadTwoClocksTwice<OwnProcess>),
    Compare("GetCpuUsage, another process", "limit", ReadTwoClocksTwice<OtherProcess>),
};

}  // namespace

}  // namespace kestrel::bench

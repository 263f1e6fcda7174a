// A load whose use of the processor is known: kestrelcore_burst_log DUTY keeps one processor busy
// for DUTY percent of every 10 ms, or without a pause for 100, until SIGTERM. Then it prints pairs
// of nanoseconds: a time on the monotonic clock and the processor time that it had used by then.
// Between two pairs the use is even.
//
// It reads its processor clock only at the edges of a burst. To read the clock brings it up to date
// for every other reader, so a load that often reads its own would flatter what is compared with
// it.

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <vector>

namespace {

constexpr std::int64_t kPeriod = 10'000'000;
// The clock, which costs no system call, stands still for that long only if the process does not
// run.
constexpr std::int64_t kInterruption = 100'000;

struct Edge {
  std::int64_t wall;
  std::int64_t used;
};

volatile std::sig_atomic_t stop = 0;

std::int64_t Now(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

Edge EdgeNow() { return {Now(CLOCK_MONOTONIC), Now(CLOCK_PROCESS_CPUTIME_ID)}; }

// Runs until `end`. An interruption by the scheduler ends a burst too: both its ends are logged.
void Burst(std::int64_t end, std::vector<Edge>& log) {
  log.push_back(EdgeNow());
  std::int64_t last = log.back().wall;
  while (stop == 0 && last < end) {
    const std::int64_t now = Now(CLOCK_MONOTONIC);
    if (now - last > kInterruption) {
      const Edge begin = log.back();
      const std::int64_t used = Now(CLOCK_PROCESS_CPUTIME_ID);
      log.push_back({last, std::min(begin.used + (last - begin.wall), used)});
      log.push_back({now, used});
    }
    last = now;
  }
  log.push_back(EdgeNow());
}

void SleepUntil(std::int64_t end) {
  const timespec time = {end / 1'000'000'000, end % 1'000'000'000};
  clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &time, nullptr);
}

}  // namespace

int main(int count, char** arguments) {
  const long duty = count == 2 ? std::strtol(arguments[1], nullptr, 10) : 0;
  if (duty < 1 || duty > 100) {
    std::fputs("usage: kestrelcore_burst_log DUTY (percent, 1 to 100)\n", stderr);
    return 2;
  }
  std::signal(SIGTERM, [](int /*signal*/) { stop = 1; });
  std::vector<Edge> log;
  log.reserve(1'000'000);
  for (std::int64_t start = Now(CLOCK_MONOTONIC); stop == 0; start += kPeriod) {
    SleepUntil(start);
    Burst(duty == 100 ? std::numeric_limits<std::int64_t>::max() : start + kPeriod / 100 * duty,
          log);
  }
  // The signal may come after the end of a burst, and before the next one.
  log.push_back(EdgeNow());
  for (const Edge& edge : log) {
    std::printf("%lld %lld\n", static_cast<long long>(edge.wall),
                static_cast<long long>(edge.used));
  }
}

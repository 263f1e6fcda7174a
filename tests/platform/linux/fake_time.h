#pragma once

#include <ctime>
#include <optional>
#include <vector>

namespace kestrel::tests {

// What this program's calls of the clocks and of sleep do. Where a value is not set, the kernel
// answers.
struct TimeFake {
  std::optional<timespec> now;           // CLOCK_MONOTONIC
  std::optional<timespec> process_time;  // the CPU clock of any process

  bool sleeps = true;               // if not, the calls below only record
  int sleep_error = 0;              // what clock_nanosleep returns then
  std::vector<timespec> deadlines;  // of clock_nanosleep with CLOCK_MONOTONIC and TIMER_ABSTIME
  std::vector<int> timeouts;        // of poll without descriptors, in milliseconds
};

// A test assigns a new one at its end.
TimeFake& FakeTime();

}  // namespace kestrel::tests

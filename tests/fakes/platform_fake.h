#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"

namespace kestrel::tests {

// A fake operating system that returns the figures below and records its calls in order.
struct PlatformFake {
  std::uint16_t architecture = 9;
  std::map<std::pair<std::uint32_t, std::uint32_t>, platform::CpuidRegisters> cpuid;
  std::uint32_t logical_processors = 8;
  platform::MemoryStatus memory;
  std::string group_directory;  // of the group that limits the memory

  int dead_pid = std::numeric_limits<int>::max();
  // The samples of a process, in order. The last one repeats, with `times_step` added each time.
  std::vector<platform::ProcessTimes> times = {{}};
  std::uint64_t times_step = 0;
  std::uint64_t resident_bytes = 0;

  std::int64_t now = 1'000'000'000;          // nanoseconds
  std::int64_t clock_step = 0;               // added after every reading of the clock
  std::vector<std::int64_t> early_wake_ups;  // clock readings at which sleeps end too soon

  // Makes the calls of one name fail, from the given one on: Fail("Process::Times", 2).
  void Fail(const std::string& operation, int from_call = 1);

  // Records a call and returns whether it succeeds.
  bool Succeeds(const std::string& operation, const std::string& arguments = "");

  std::vector<std::string> calls;
  int open_handles = 0;

 private:
  std::map<std::string, int> failing_from_;
  std::map<std::string, int> call_counts_;
};

// The fake behind platform/platform.h. A test begins by assigning a new one.
PlatformFake& Platform();

}  // namespace kestrel::tests

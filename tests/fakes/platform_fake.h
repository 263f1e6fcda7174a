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

// An operating system made of the figures below. It records every call by name, in order.
struct PlatformFake {
  std::uint16_t architecture = 9;
  std::map<std::pair<std::uint32_t, std::uint32_t>, platform::CpuidRegisters> cpuid;
  std::uint32_t logical_processors = 8;
  platform::MemoryStatus memory;

  int dead_pid = std::numeric_limits<int>::max();
  // What the samples of a process show, in order; the last one stays, or moves on by the step.
  std::vector<platform::ProcessTimes> times = {{}};
  std::uint64_t times_step = 0;
  std::uint64_t resident_bytes = 0;

  std::int64_t now = 1'000'000'000;          // nanoseconds
  std::int64_t clock_step = 0;               // added after every reading of the clock
  std::vector<std::int64_t> early_wake_ups;  // clock readings at which sleeps end too soon

  // Makes the calls of one name fail from the given one on: Fail("Process::Times", 2).
  void Fail(const std::string& operation, int from_call = 1);

  // Notes a call and says whether it is to succeed.
  bool Succeeds(const std::string& operation, const std::string& arguments = "");

  std::vector<std::string> calls;
  int open_handles = 0;

 private:
  std::map<std::string, int> failing_from_;
  std::map<std::string, int> call_counts_;
};

// The fake behind platform/platform.h; assign a new one to begin a test.
PlatformFake& Platform();

}  // namespace kestrel::tests

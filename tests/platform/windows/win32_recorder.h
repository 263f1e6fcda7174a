#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

// Replaces the Windows functions that the native layer calls, in every program that links this
// file. A test sets their results and reads the recorded calls.

namespace kestrel::tests {

struct Win32 {
  // Results.
  SYSTEM_INFO system{};
  bool memory_succeeds = true;
  MEMORYSTATUSEX memory{};
  bool open_succeeds = true;
  int times_successes = 1000;  // calls that succeed before one fails
  FILETIME kernel{};
  FILETIME user{};
  bool counters_succeed = true;
  std::uint64_t working_set = 0;

  // "OpenProcess(0x400, 0, 1234)", "GetProcessTimes()", "GlobalMemoryStatusEx(64)", … in order.
  std::vector<std::string> calls;
};

// One for the whole program; a test sets it to Win32{} at its start.
Win32& RecordedWin32();

}  // namespace kestrel::tests

#pragma once

#include <exception>
#include <optional>
#include <string>
#include <vector>

// A second reading of the command line of the harness.

namespace kestrel::fuzz {

// What the harness did, until an exception ended it.
struct Run {
  std::vector<std::string> steps;  // routines and pauses
  std::string output;
  std::string errors;
  std::optional<int> status;  // not set after an exception
  bool shows_usage = false;   // set by the reference, which leaves the text of --help out
};

// Ends a run, of which the command line may ask for 2^31 cycles.
struct Enough : std::exception {};

// Throws Enough if there are many.
void AddStep(Run& run, const std::string& step);

// Steps.
std::string PauseText(long long milliseconds);
std::string UsageText(int pid, int milliseconds);
std::string MemoryText(int pid);

// What the harness is to do. `nullopt` if the command line has a number above 32 bits: the option
// library refuses most of them, and reads others without their upper bits.
std::optional<Run> RunOf(const std::vector<std::string>& arguments);

}  // namespace kestrel::fuzz

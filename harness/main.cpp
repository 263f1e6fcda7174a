#include <chrono>
#include <cstdint>
#include <cxxopts.hpp>
#include <functional>
#include <iostream>
#include <optional>
#include <thread>
#include <vector>

#include "routines.h"

namespace {

using RoutineList = std::vector<std::function<void()>>;

constexpr const char* kBannerLine = "------------------------------------";

cxxopts::Options MakeOptions() {
  cxxopts::Options options("Test libkestrel", "A test harness for libkestrel");
  auto add = options.add_options();
  add("cpu-test", "CPU test", cxxopts::value<bool>()->default_value("false"));
  add("p, pid", "Process ID", cxxopts::value<int>()->default_value("-1"));
  add("s, split_ms", "CPU measurement split", cxxopts::value<int>()->default_value("500"));
  add("mem-test", "Memory test", cxxopts::value<bool>()->default_value("false"));
  add("r, repeat", "Repeat", cxxopts::value<int>()->default_value("1"));
  add("hardware-test", "Hardware survey test", cxxopts::value<bool>()->default_value("false"));
  add("h,help", "Print usage");
  return options;
}

// Decides by which options were given; the values of the switches are never read. Returns `nullopt`
// if --cpu-test was given without a pid.
std::optional<RoutineList> SelectRoutines(const cxxopts::ParseResult& arguments, int split_ms) {
  RoutineList routines;
  const bool has_pid = arguments.count("pid") != 0;
  if (arguments.count("hardware-test") != 0) {
    routines.emplace_back(PrintHardwareSurvey);
  }
  if (arguments.count("cpu-test") != 0) {
    if (!has_pid) {
      return std::nullopt;
    }
    const int pid = arguments["pid"].as<int>();
    routines.emplace_back([pid, split_ms] { PrintCpuUsage(pid, split_ms); });
  }
  if (arguments.count("mem-test") != 0) {
    if (has_pid) {
      const int pid = arguments["pid"].as<int>();
      routines.emplace_back([pid] { PrintProcessMemory(pid); });
    } else {
      routines.emplace_back(PrintMachineMemory);
    }
  }
  return routines;
}

void RunCycle(const RoutineList& routines, std::int64_t number, std::chrono::milliseconds pause) {
  std::cout << kBannerLine << std::endl;
  std::cout << "\n++ Running test #" << number << " ++ \n" << std::endl;
  std::cout << kBannerLine << std::endl;
  for (const auto& routine : routines) {
    routine();
  }
  std::this_thread::sleep_for(pause);
}

}  // namespace

// Message texts are fixed, including their wording.
//
// Catches no exception: a command line that cannot be parsed ends the program through
// std::terminate. An option name of 30,000 letters overflows a stack of 8 MiB: the option library
// matches names by a regular expression, which recurses for each letter. Built without regular
// expressions it would refuse "-p-5" and "-r-1", which are valid here.
int main(int argc, char** argv) {  // NOLINT(bugprone-exception-escape)
  cxxopts::Options options = MakeOptions();
  const cxxopts::ParseResult arguments = options.parse(argc, argv);
  if (arguments.count("help") != 0) {
    std::cout << options.help() << std::endl;
    return 0;
  }
  if (arguments.count("mem-test") == 0 && arguments.count("cpu-test") == 0 &&
      arguments.count("hardware-test") == 0) {
    std::cerr
        << "At least one of '--mem-test', '--cpu-test' or '--hardware-test' must be specified!"
        << std::endl;
    return 1;
  }
  const int split_ms = arguments["split_ms"].as<int>();
  const auto routines = SelectRoutines(arguments, split_ms);
  if (!routines) {
    std::cerr << "You must provide a non-negative pid ('-p') to run'--cpu-test'!" << std::endl;
    return 1;
  }
  const int repeat = arguments["repeat"].as<int>();
  for (std::int64_t number = 1; number <= repeat; ++number) {
    RunCycle(*routines, number, std::chrono::milliseconds(split_ms));
  }
  return 0;
}

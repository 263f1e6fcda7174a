// The command line of the harness against a second reading of it: the same output and exit status,
// the same routines and pauses in the same order, or an exception for both. The input is one
// argument a line.

#include <cerrno>
#include <ctime>
#include <iostream>
#include <sstream>

#include "fuzz/harness_reference.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "harness/routines.h"

// harness/main.cpp is compiled with this name for its main().
int RunHarness(int argc, char** argv);

namespace kestrel::fuzz {

namespace {

// Null while no run is observed, and in the thread of libFuzzer, which sleeps.
thread_local Run* observed = nullptr;

// Takes what is written to a stream.
class Capture {
 public:
  explicit Capture(std::ostream& stream) : stream_(stream), before_(stream.rdbuf(text_.rdbuf())) {}
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;
  ~Capture() { stream_.rdbuf(before_); }
  [[nodiscard]] std::string text() const { return text_.str(); }

 private:
  std::ostream& stream_;
  std::ostringstream text_;
  std::streambuf* before_;
};

Run RunWith(const std::vector<std::string>& arguments) {
  std::vector<std::string> texts = {"kestrel-harness"};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  Run run;
  const Capture output(std::cout);
  const Capture errors(std::cerr);
  observed = &run;
  try {
    run.status = RunHarness(static_cast<int>(texts.size()), pointers.data());
  } catch (const std::exception&) {
    // Ends the program.
  }
  observed = nullptr;
  run.output = output.text();
  run.errors = errors.text();
  return run;
}

void RequireUsage(const std::string& output) {
  for (const std::string name :
       {"cpu-test", "pid", "split_ms", "mem-test", "repeat", "hardware-test", "help"}) {
    Require(output.find("--" + name) != std::string::npos, "the usage names every option");
  }
  Require(output.find("Running test") == std::string::npos, "the usage precedes all else");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The arguments of a program end with NUL, so that none has one.
  const std::string text = TextOf(data, size);
  const std::vector<std::string> arguments =
      text.empty() ? std::vector<std::string>() : Split(text.substr(0, text.find('\0')), '\n');
  const Run run = RunWith(arguments);
  const std::optional<Run> expected = RunOf(arguments);
  if (!expected) {
    return 0;
  }
  Require(run.status == expected->status, "the exit status is that of the reference");
  Require(run.steps == expected->steps, "the routines and pauses are those of the reference");
  Require(run.errors == expected->errors, "the message is that of the reference");
  if (expected->shows_usage) {
    RequireUsage(run.output);
  } else {
    Require(run.output == expected->output, "the output is that of the reference");
  }
  return 0;
}

}  // namespace kestrel::fuzz

// The routines, which the harness calls from its only thread.

namespace fuzz = kestrel::fuzz;

void PrintHardwareSurvey() { fuzz::AddStep(*fuzz::observed, "hardware"); }
void PrintCpuUsage(int pid, int split_ms) {
  fuzz::AddStep(*fuzz::observed, fuzz::UsageText(pid, split_ms));
}
void PrintProcessMemory(int pid) { fuzz::AddStep(*fuzz::observed, fuzz::MemoryText(pid)); }
void PrintMachineMemory() { fuzz::AddStep(*fuzz::observed, "memory"); }

// Instead of that of the C library.
extern "C" int nanosleep(const timespec* time, timespec* remaining) {
  if (fuzz::observed != nullptr) {
    fuzz::AddStep(*fuzz::observed,
                  fuzz::PauseText(time->tv_sec * 1000LL + time->tv_nsec / 1'000'000));
    return 0;
  }
  errno = clock_nanosleep(CLOCK_REALTIME, 0, time, remaining);
  return errno == 0 ? 0 : -1;
}

#include "fuzz/harness_reference.h"

#include <cstdint>
#include <map>
#include <set>

#include "fuzz/text_reference.h"

namespace kestrel::fuzz {

namespace {

// The harness ends by an exception of its option library.
struct Refused : std::exception {};

// A number above 32 bits.
struct Unspecified : std::exception {};

struct Options {
  std::map<std::string, int> counts;
  std::map<std::string, int> numbers = {{"pid", -1}, {"split_ms", 500}, {"repeat", 1}};
};

const std::map<char, std::string> kLetters = {
    {'p', "pid"}, {'s', "split_ms"}, {'r', "repeat"}, {'h', "help"}};
const std::set<std::string> kSwitches = {"cpu-test", "mem-test", "hardware-test", "help"};
const std::set<std::string> kSwitchValues = {"true",  "True",  "t", "T", "1",
                                             "false", "False", "f", "F", "0"};

// Small numbers as people write them: "12", "-12", "0xC" and "-0xC".
int NumberOf(const std::string& text) {
  const bool negative = text.substr(0, 1) == "-";
  std::string digits = text.substr(negative ? 1 : 0);
  const bool is_hex = digits.substr(0, 2) == "0x" && digits.size() > 2;
  digits.erase(0, is_hex ? 2 : 0);
  long long number = 0;
  for (const char letter : digits) {
    std::size_t digit = std::string("0123456789abcdefABCDEF").find(letter);
    digit -= digit != std::string::npos && digit > 15 ? 6 : 0;
    if (digit >= (is_hex ? 16U : 10U)) {
      throw Refused();
    }
    number = number * (is_hex ? 16 : 10) + static_cast<long long>(digit);
    if (number > UINT32_MAX) {
      throw Unspecified();
    }
  }
  number = negative ? -number : number;
  if (digits.empty() || number < INT32_MIN || number > INT32_MAX) {
    throw Refused();
  }
  return static_cast<int>(number);
}

class Reader {
 public:
  explicit Reader(const std::vector<std::string>& arguments) : arguments_(arguments) {
    while (next_ < arguments_.size() && arguments_[next_] != "--") {
      Read(arguments_[next_++]);
    }
  }

  [[nodiscard]] bool Has(const std::string& name) const { return options_.counts.count(name) == 1; }
  [[nodiscard]] int Number(const std::string& name) const { return options_.numbers.at(name); }

 private:
  void Read(const std::string& argument) {
    if (argument.size() < 2 || argument.front() != '-') {
      return;  // the harness ignores words that belong to no option
    }
    if (argument[1] != '-') {
      ReadLetters(argument.substr(1));
      return;
    }
    const std::size_t equals = argument.find('=');
    const std::string name = argument.substr(2, equals == std::string::npos ? equals : equals - 2);
    if (equals == std::string::npos) {
      Take(name);
    } else {
      Set(name, argument.substr(equals + 1));
    }
  }

  // "-hp5" is "-h -p 5".
  void ReadLetters(const std::string& letters) {
    for (std::size_t i = 0; i < letters.size(); ++i) {
      const auto found = kLetters.find(letters[i]);
      if (found == kLetters.end()) {
        throw Refused();
      }
      if (kSwitches.count(found->second) == 1 || i + 1 == letters.size()) {
        Take(found->second);
      } else {
        Set(found->second, letters.substr(i + 1));
        return;
      }
    }
  }

  // A switch, or an option whose value is the next argument, whatever that begins with.
  void Take(const std::string& name) {
    if (kSwitches.count(name) == 1) {
      Set(name, "true");
    } else if (next_ < arguments_.size()) {
      Set(name, arguments_[next_++]);
    } else {
      throw Refused();
    }
  }

  void Set(const std::string& name, const std::string& value) {
    if (options_.numbers.count(name) == 1) {
      options_.numbers[name] = NumberOf(value);
    } else if (kSwitches.count(name) == 0 || kSwitchValues.count(value) == 0) {
      throw Refused();
    }
    ++options_.counts[name];
  }

  const std::vector<std::string>& arguments_;
  std::size_t next_ = 0;
  Options options_;
};

void AddCycle(Run& run, const Reader& options) {
  if (options.Has("hardware-test")) {
    AddStep(run, "hardware");
  }
  if (options.Has("cpu-test")) {
    AddStep(run, UsageText(options.Number("pid"), options.Number("split_ms")));
  }
  if (options.Has("mem-test")) {
    AddStep(run, options.Has("pid") ? MemoryText(options.Number("pid")) : "memory");
  }
  if (options.Number("split_ms") > 0) {
    AddStep(run, PauseText(options.Number("split_ms")));
  }
}

void AddRun(Run& run, const std::vector<std::string>& arguments) {
  const std::string line(36, '-');
  const Reader options(arguments);
  run.status = 1;
  if (options.Has("help")) {
    run.status = 0;
    run.shows_usage = true;
  } else if (!options.Has("mem-test") && !options.Has("cpu-test") &&
             !options.Has("hardware-test")) {
    run.errors =
        "At least one of '--mem-test', '--cpu-test' or '--hardware-test' must be specified!\n";
  } else if (options.Has("cpu-test") && !options.Has("pid")) {
    run.errors = "You must provide a non-negative pid ('-p') to run'--cpu-test'!\n";
  } else {
    run.status.reset();
    for (int number = 1; number <= options.Number("repeat"); ++number) {
      run.output +=
          line + "\n\n++ Running test #" + std::to_string(number) + " ++ \n\n" + line + "\n";
      AddCycle(run, options);
    }
    run.status = 0;
  }
}

}  // namespace

void AddStep(Run& run, const std::string& step) {
  constexpr std::size_t kMostSteps = 12;
  run.steps.push_back(step);
  if (run.steps.size() == kMostSteps) {
    throw Enough();
  }
}

std::string PauseText(long long milliseconds) { return "pause " + std::to_string(milliseconds); }
std::string UsageText(int pid, int milliseconds) {
  return "usage of " + std::to_string(pid) + " for " + std::to_string(milliseconds);
}
std::string MemoryText(int pid) { return "memory of " + std::to_string(pid); }

std::optional<Run> RunOf(const std::vector<std::string>& arguments) {
  Run run;
  try {
    AddRun(run, arguments);
  } catch (const Unspecified&) {
    return std::nullopt;
  } catch (const std::exception&) {
    // What was done until then.
  }
  return run;
}

}  // namespace kestrel::fuzz

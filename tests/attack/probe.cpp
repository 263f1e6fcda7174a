// Makes each call of an interface in a process of its own, and prints what became of it, one line a
// call:
//
//   name, fault, process, end, descriptors left open, allocations, result, result of a second call,
//   standard error
//
// separated by tabs. script/attack decides what is right.
//
//   probe [OPTION]... [CALL]...        the calls of these names; by default all
//     --pad=NUMBER:COUNT               make system call NUMBER so often before each call
//     --allocations[=K]                let the n-th allocation fail, and the n-th and all later
//     ones,
//                                      for each n; from K on for ever fewer of them
//     --warm                           make each call once before, without a fault

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <iostream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "tests/attack/call.h"
#include "tests/attack/child.h"

namespace kestrel::tests {
namespace {

struct Options {
  Plan plan;
  bool allocations = false;
  long dense = 0;  // up to which allocation every one fails; 0: all
  std::vector<std::string> names;
};

Options Parse(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument.rfind("--pad=", 0) == 0) {
      const std::size_t colon = argument.find(':');
      options.plan.system_call = std::stoi(argument.substr(6, colon - 6));
      options.plan.padding = std::stoi(argument.substr(colon + 1));
    } else if (argument.rfind("--allocations", 0) == 0) {
      options.allocations = true;
      const std::size_t equals = argument.find('=');
      options.dense = equals == std::string::npos ? 0 : std::stol(argument.substr(equals + 1));
    } else if (argument == "--warm") {
      options.plan.warm = true;
    } else {
      options.names.push_back(argument);
    }
  }
  return options;
}

// A process that has some memory and is stopped: its figures do not move.
class IdleProcess {
 public:
  IdleProcess() : pid_(fork()) {
    if (pid_ == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      static const std::vector<char> memory(kMemory, 'x');
      raise(SIGSTOP);
      _exit(1);  // never: it is killed
    }
    if (pid_ < 0 || waitpid(pid_, nullptr, WUNTRACED) != pid_) {
      throw std::system_error(errno, std::generic_category(), "idle process");
    }
  }
  IdleProcess(const IdleProcess&) = delete;
  IdleProcess& operator=(const IdleProcess&) = delete;
  ~IdleProcess() {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }

  [[nodiscard]] int pid() const { return pid_; }

 private:
  static constexpr std::size_t kMemory = std::size_t{8} << 20;

  pid_t pid_;
};

// On one line, without tabs.
std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char letter : text) {
    if (letter >= ' ' && letter <= '~' && letter != '\\') {
      escaped += letter;
    } else {
      char code[8];
      std::snprintf(code, sizeof(code), "\\x%02X", static_cast<unsigned char>(letter));
      escaped += code;
    }
  }
  return escaped;
}

void Print(const Call& call, const std::string& fault, const Outcome& outcome) {
  std::cout << call.name << '\t' << fault << '\t' << outcome.child << '\t' << outcome.end << '\t'
            << outcome.leaked << '\t' << outcome.allocations << '\t' << Escaped(outcome.first)
            << '\t' << Escaped(outcome.again) << '\t' << Escaped(outcome.error) << std::endl;
}

// Ends with the first allocation that the call does not make: that run had no fault.
void AttackAllocations(const Call& call, Plan plan, long dense) {
  for (long n = 0;; n += dense > 0 ? 1 + n / dense : 1) {
    for (const bool all_later : {false, true}) {
      plan.allocations = {n, all_later};
      const Outcome outcome = RunInChild(call, plan);
      if (outcome.allocations <= n && outcome.end == "exit 0") {
        Print(call, "-", outcome);
        return;
      }
      Print(call, (all_later ? "from " : "only ") + std::to_string(n), outcome);
    }
  }
}

void Run(const Call& call, const Options& options) {
  if (options.allocations) {
    AttackAllocations(call, options.plan, options.dense);
  } else {
    Print(call, "-", RunInChild(call, options.plan));
  }
}

}  // namespace
}  // namespace kestrel::tests

int main(int argc, char** argv) {
  using namespace kestrel::tests;
  Options options = Parse(argc, argv);
  const IdleProcess idle;
  options.plan.pid = idle.pid();
  const auto& names = options.names;
  for (const Call& call : Calls()) {
    if (names.empty() || std::find(names.begin(), names.end(), call.name) != names.end()) {
      Run(call, options);
    }
  }
  return 0;
}

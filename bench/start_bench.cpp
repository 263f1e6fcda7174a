// Programs that do nothing, from before their start to after their end: what it costs to load the
// library is the difference to a program that does not.

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

// The folder of the simulated HIP runtime is in LD_LIBRARY_PATH; without it the loader takes the
// installed runtime.
std::vector<char*> Variables(bool simulated_runtime) {
  std::vector<char*> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (simulated_runtime || std::strncmp(*variable, "LD_LIBRARY_PATH=", 16) != 0) {
      variables.push_back(*variable);
    }
  }
  variables.push_back(nullptr);
  return variables;
}

bool Run(std::string program, const std::vector<char*>& variables) {
  pid_t process = 0;
  int status = 0;
  char* arguments[] = {program.data(), nullptr};
  return posix_spawn(&process, program.c_str(), nullptr, nullptr, arguments, variables.data()) ==
             0 &&
         waitpid(process, &status, 0) == process && status == 0;
}

bool AddProgram(const char* name, const char* program, bool simulated_runtime = true) {
  benchmark::RegisterBenchmark((std::string("start/") + name).c_str(),
                               [program, simulated_runtime](benchmark::State& state) {
                                 const auto variables = Variables(simulated_runtime);
                                 for (auto _ : state) {
                                   if (!Run(program, variables)) {
                                     state.SkipWithError("the program does not start");
                                     break;
                                   }
                                 }
                               })
      ->UseRealTime()
      ->Unit(benchmark::kMicrosecond);
  return true;
}

const bool added[] = {
    AddProgram("a C program", KESTREL_START_C),
    AddProgram("a C++ program", KESTREL_START_CPP),
    AddProgram("linked", KESTREL_START_LINKED),
    AddProgram("linked, installed HIP", KESTREL_START_LINKED, false),
    AddProgram("lazy", KESTREL_START_LAZY),
    AddProgram("C interface", KESTREL_START_C_INTERFACE),
};

}  // namespace

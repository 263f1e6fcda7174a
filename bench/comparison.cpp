#include "bench/comparison.h"

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

#include "bench/shared_value.h"

namespace kestrel::bench {

namespace {

double SecondsInChild(void (*call)()) {
  const SharedValue<double> seconds;
  const pid_t child = fork();
  if (child == 0) {
    const auto start = std::chrono::steady_clock::now();
    call();
    *seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    _exit(0);
  }
  waitpid(child, nullptr, 0);
  return *seconds;
}

}  // namespace

std::vector<Way>& Ways() {
  static std::vector<Way> ways;
  return ways;
}

bool CompareFirstCall(const std::string& figure, const std::string& way, void (*call)()) {
  const std::string name = figure + "/" + way;
  benchmark::RegisterBenchmark(name.c_str(),
                               [call](benchmark::State& state) {
                                 for (auto _ : state) {
                                   state.SetIterationTime(SecondsInChild(call));
                                 }
                               })
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
  Ways().push_back({name, call, false});
  return true;
}

}  // namespace kestrel::bench

#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "bench/measured_process.h"

namespace kestrel::bench {

// The ways to obtain a figure are benchmarks named "<figure>/<way>". The way "kestrelcore" is the
// call of this library, "limit" the bare system calls and instructions that its answer needs, and
// any other a library or a method that a user could choose instead. Each file adds its own during
// static initialization, so a peer that is not installed is only a file that is not compiled.

// A way whose system calls and allocations can be counted.
struct Way {
  std::string name;
  std::function<void()> call;
  bool warm_up;  // whether to count the second call in a process instead of the first
};

std::vector<Way>& Ways();

// Adds a way. The returned value serves to initialize a variable.
template <typename Call>
bool Compare(const std::string& figure, const std::string& way, Call call) {
  const std::string name = figure + "/" + way;
  benchmark::RegisterBenchmark(name.c_str(), [call](benchmark::State& state) {
    for (auto _ : state) {
      benchmark::DoNotOptimize(call());
    }
  })->Unit(benchmark::kMicrosecond);
  Ways().push_back({name, [call] { benchmark::DoNotOptimize(call()); }, true});
  return true;
}

// Adds a way to measure a process, by its id.
template <typename Call>
bool ComparePerProcess(const std::string& figure, const std::string& way, Call call) {
  return Compare(figure + ", own process", way, [call] { return call(OwnProcess()); }) &&
         Compare(figure + ", another process", way, [call] { return call(OtherProcess()); });
}

// Adds a way that remembers its answer, so that only the first call in a process obtains one. Each
// call is measured in a child process of its own.
bool CompareFirstCall(const std::string& figure, const std::string& way, void (*call)());

}  // namespace kestrel::bench

// Compares the calls of kestrelcore with the bare calls that their answers need, and with other
// libraries. A program of Google Benchmark, with its options; and
//
//   kestrelcore_bench --counts
//
// prints instead, for each way to obtain a figure, a line of its name, its system calls, its heap
// allocations and the files that it reads, separated by tabs.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string_view>

#include "bench/comparison.h"
#include "bench/measured_process.h"
#include "bench/trace.h"

namespace {

void PrintCounts() {
  for (const kestrel::bench::Way& way : kestrel::bench::Ways()) {
    const auto trace = kestrel::bench::TraceCall(way.call, way.warm_up);
    std::printf("%s\t%llu\t%llu", way.name.c_str(),
                static_cast<unsigned long long>(trace.system_calls),
                static_cast<unsigned long long>(trace.allocations));
    for (const auto& file : trace.files) {
      std::printf("\t%s", file.path.c_str());
    }
    std::printf("\n");
    std::fflush(stdout);  // before the next child gets a copy of the buffer
  }
}

}  // namespace

int main(int argc, char** argv) {
  kestrel::bench::OtherProcess();  // one for this process and the children that it traces
  if (argc == 2 && std::string_view(argv[1]) == "--counts") {
    PrintCounts();
    return 0;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 2;
  }
  benchmark::RunSpecifiedBenchmarks();
}

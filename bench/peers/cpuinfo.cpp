#include <cpuinfo.h>

#include "bench/comparison.h"

namespace {

const bool added = kestrel::bench::CompareFirstCall("SurveyCpu", "cpuinfo", [] {
  cpuinfo_initialize();
  benchmark::DoNotOptimize(cpuinfo_has_x86_avx2());
});

}  // namespace

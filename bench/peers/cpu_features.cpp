#include <cpuinfo_x86.h>

#include "bench/comparison.h"

namespace {

const bool added =
    kestrel::bench::Compare("SurveyCpu", "cpu_features", [] { return cpu_features::GetX86Info(); });

}  // namespace

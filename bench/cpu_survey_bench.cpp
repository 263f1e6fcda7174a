#include <cpuid.h>
#include <sys/utsname.h>

#include "bench/comparison.h"
#include "system/cpu_survey.h"

namespace kestrel::bench {

namespace {

unsigned MachineNameAndTwoLeaves() {
  utsname name{};
  uname(&name);
  unsigned eax = 0;
  unsigned ebx = 0;
  unsigned ecx = 0;
  unsigned edx = 0;
  __cpuid_count(1, 0, eax, ebx, ecx, edx);
  const unsigned avx = ecx;
  __cpuid_count(7, 0, eax, ebx, ecx, edx);
  return avx ^ ebx ^ static_cast<unsigned char>(name.machine[0]);
}

const bool added[] = {
    Compare("SurveyCpu", "kestrelcore", [] { return system::SurveyCpu(); }),
    Compare("SurveyCpu", "limit", MachineNameAndTwoLeaves),
};

}  // namespace

}  // namespace kestrel::bench

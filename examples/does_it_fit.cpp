// Whether a model of some size fits, and where: does_it_fit GIB

#include <system/hardware_survey.h>
#include <utils/memory_observer.h>

#include <cstdlib>
#include <iostream>

constexpr long long kMaxGib = 1000000000;  // in bytes less than 2^63

int main(int argc, char** argv) {
  const long long gib = argc > 1 ? std::atoll(argv[1]) : 8;
  if (gib < 1 || gib > kMaxGib) {
    std::cerr << "GIB must be a number from 1 to " << kMaxGib << ".\n";
    return 2;
  }
  const kestrel_utils::MemoryObserver memory;
  const auto [result, gpus] = kestrel::system::SurveyGpus();
  const long long free_gib = memory.getAvailableVRAM() >> 30;
  if (!gpus.empty() && free_gib >= gib) {
    std::cout << gib << " GiB fit on " << gpus.front().name << ", which has " << free_gib
              << " GiB free.\n";
  } else if (memory.willFailToAllocate(gib << 30)) {
    std::cout << gib << " GiB do not fit.\n";
  } else {
    std::cout << gib << " GiB fit into RAM alone.\n";
  }
}

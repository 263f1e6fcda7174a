// Over the HIP runtime that the loader finds: set LD_LIBRARY_PATH and KESTREL_SIM_MACHINE for a
// simulated machine.

#include <hip/hip_runtime_api.h>

#include <cstddef>

#include "bench/comparison.h"
#include "system/hardware_survey.h"
#include "utils/memory_observer.h"

namespace kestrel::bench {

namespace {

using kestrel_utils::MemoryObserver;

int Devices() {
  int count = 0;
  static_cast<void>(hipGetDeviceCount(&count));
  return count;
}

std::size_t TotalGlobalMemory(int device) {
  hipDeviceProp_t properties{};
  static_cast<void>(hipGetDeviceProperties(&properties, device));
  return properties.totalGlobalMem;
}

std::size_t MemoryOf(int device) {
  std::size_t free = 0;
  std::size_t total = 0;
  static_cast<void>(hipSetDevice(device));
  static_cast<void>(hipMemGetInfo(&free, &total));
  return free ^ total;
}

std::size_t CallsOfSurvey() {
  std::size_t sum = 0;
  const int count = Devices();
  for (int device = 0; device < count; ++device) {
    sum += TotalGlobalMemory(device) + MemoryOf(device);
  }
  return sum;
}

std::size_t CallsOfTotal() {
  std::size_t sum = 0;
  const int count = Devices();
  for (int device = 0; device < count; ++device) {
    sum += TotalGlobalMemory(device);
  }
  return sum;
}

std::size_t CallsOfAvailable() { return Devices() > 0 ? MemoryOf(0) : 0; }

const bool added[] = {
    Compare("SurveyGpus", "kestrelcore", system::SurveyGpus),
    Compare("SurveyGpus", "limit", CallsOfSurvey),
    Compare("getMachinePhysicalVRAM", "kestrelcore", MemoryObserver::getMachinePhysicalVRAM),
    Compare("getMachinePhysicalVRAM", "limit", CallsOfTotal),
    Compare("getAvailableVRAM", "kestrelcore", [] { return MemoryObserver().getAvailableVRAM(); }),
    Compare("getAvailableVRAM", "limit", CallsOfAvailable),
};

}  // namespace

}  // namespace kestrel::bench

#pragma once

#include <fuzzer/FuzzedDataProvider.h>
#include <hip/hip_runtime_api.h>

#include <cstddef>
#include <vector>

namespace kestrel::fuzz {

// What a HIP runtime reports of a device, whatever that is: failures, names without an end.
struct ReportedDevice {
  hipError_t described = hipSuccess;
  hipDeviceProp_t properties{};
  hipError_t selected = hipSuccess;
  hipError_t queried = hipSuccess;
  std::size_t free = 0;   // bytes
  std::size_t total = 0;  // bytes
};

struct ReportedMachine {
  hipError_t counted = hipSuccess;
  int count = 0;  // of the devices; may be below 0
  std::vector<ReportedDevice> devices;
};

// Makes a machine of the input. From then on the HIP operations report it.
const ReportedMachine& ReportFrom(FuzzedDataProvider& input);

}  // namespace kestrel::fuzz

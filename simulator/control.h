#pragma once

#include <hip/hip_runtime_api.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/release.h"

// Controls the simulated HIP runtime from within the process that links it: installs a machine and
// returns the recorded calls. The shared library reads its machine from a file instead.

namespace kestrel::simulator {

struct Device {
  std::string name;                // at most 256 characters fit the properties record
  std::string arch;                // gcnArchName, at most 256 characters
  int integrated = 0;              // nonzero for an integrated GPU
  std::uint64_t total_memory = 0;  // bytes, the total of hipMemGetInfo
  std::uint64_t free_memory = 0;   // bytes, the free figure of hipMemGetInfo; may exceed the total
  std::uint64_t properties_memory = 0;  // bytes, totalGlobalMem of the properties record
};

// Makes calls of one operation fail.
struct Fault {
  std::string operation;  // "hipMemGetInfo"
  // The device that the call names or, if it names none, the current one. Any if not set.
  std::optional<int> device;
  // Number of the matching call that fails, counted from 1. Every one if not set.
  std::optional<int> call;
  hipError_t status = hipErrorUnknown;
};

struct Machine {
  std::vector<Device> devices;
  // The count that hipGetDeviceCount reports instead of the number of devices. With 0 and no device
  // it reports success and no device.
  std::optional<int> claimed_device_count;
  std::vector<Fault> faults;
};

enum class Recording { kOn, kOff };

// Replaces the machine, clears the recorded calls, and makes device 0 current on every thread. The
// record grows with every call: a process that calls for a long time turns it off. `release` is the
// release of HIP to simulate.
void Install(Machine machine, Recording recording = Recording::kOn, int release = kHip5);

// Every call since Install, in order: "hipGetDeviceCount()", "hipSetDevice(1)",
// "hipGetDeviceProperties(1)", "hipMemGetInfo()", "hipGetErrorString(100)".
std::vector<std::string> RecordedCalls();

// Returns the calling thread's current device.
int CurrentDevice();

}  // namespace kestrel::simulator

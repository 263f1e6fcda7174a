#pragma once

#include <hip/hip_runtime_api.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The simulated HIP runtime, from within the process that it is linked into: machine in, recorded
// calls out. The shared library reads its machine from a file instead.

namespace kestrel::simulator {

struct Device {
  std::string name;                     // cut to the 256 characters of the properties record
  std::string arch;                     // gcnArchName, likewise
  int integrated = 0;                   // nonzero for an integrated GPU
  std::uint64_t total_memory = 0;       // bytes, as hipMemGetInfo tells
  std::uint64_t free_memory = 0;        // bytes, likewise; may exceed the total
  std::uint64_t properties_memory = 0;  // bytes, totalGlobalMem of the properties record
};

// Makes calls of one operation fail.
struct Fault {
  std::string operation;      // "hipMemGetInfo"
  std::optional<int> device;  // its argument or, without one, the current device; none: any
  std::optional<int> call;    // which of the calls that match, from 1; none: every one
  hipError_t status = hipErrorUnknown;
};

struct Machine {
  std::vector<Device> devices;
  std::optional<int> claimed_device_count;  // what hipGetDeviceCount says, where that is a lie;
                                            // 0 without devices: success and none
  std::vector<Fault> faults;
};

enum class Recording { kOn, kOff };

// Replaces the machine, forgets the recorded calls, and makes device 0 current on every thread. The
// record grows with every call, so a process that calls without end does without it.
void Install(Machine machine, Recording recording = Recording::kOn);

// Every call since, in order, as written: "hipGetDeviceCount()", "hipSetDevice(1)",
// "hipGetDeviceProperties(1)", "hipMemGetInfo()", "hipGetErrorString(100)".
std::vector<std::string> RecordedCalls();

// The calling thread's current device.
int CurrentDevice();

}  // namespace kestrel::simulator

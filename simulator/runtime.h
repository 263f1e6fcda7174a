#pragma once

#include <hip/hip_runtime_api.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "simulator/control.h"

namespace kestrel::simulator {

// One call of an operation.
struct Call {
  const char* operation;
  std::string argument = {};       // as recorded; empty for none
  std::optional<int> device = {};  // the device that it names; none: the current one
};

// What HIP keeps for each host thread.
struct ThreadState {
  std::uint64_t generation = 0;  // of the machine that the rest was about
  int current_device = 0;
  hipError_t last_error = hipSuccess;
};

// A simulated machine at work. Not locked: see WithRuntime.
class Runtime {
 public:
  // The generation tells this machine from those before it.
  Runtime(Machine machine, Recording recording, std::uint64_t generation);

  // Records the call, and tells the status of the fault that it runs into; success for none.
  hipError_t Admit(const Call& call);

  // Likewise for an operation that needs a device: fails as well on a machine without any.
  hipError_t AdmitToDevices(const Call& call);

  // The count in `claimed_device_count`, else how many there are.
  [[nodiscard]] int DeviceCount() const;
  // Without devices the runtime does not start, unless it is to claim that it counted them.
  [[nodiscard]] bool Started() const;
  // Null if there is no such device.
  [[nodiscard]] const Device* DeviceAt(int index) const;

  // `hipErrorInvalidDevice` if there is no such device, `hipErrorOutOfMemory` if it has not that
  // much left.
  hipError_t Allocate(int device, std::size_t size, void** address);
  // `hipErrorInvalidDevicePointer` if nothing was allocated there.
  hipError_t Release(void* address);

  // The calling thread's.
  [[nodiscard]] ThreadState& Thread() const;

  [[nodiscard]] const std::vector<std::string>& calls() const { return calls_; }
  [[nodiscard]] std::uint64_t generation() const { return generation_; }

 private:
  struct Allocation {
    int device;
    std::size_t size;
  };

  Machine machine_;
  std::vector<int> matched_calls_;  // of each fault
  Recording recording_;
  std::vector<std::string> calls_;
  std::map<std::uintptr_t, Allocation> allocations_;
  std::uintptr_t next_address_;
  std::uint64_t generation_;
};

std::mutex& RuntimeMutex();

// The process's one runtime; hold the mutex.
Runtime& TheRuntime();

template <typename Action>
auto WithRuntime(Action action) {
  const std::lock_guard lock(RuntimeMutex());
  return action(TheRuntime());
}

}  // namespace kestrel::simulator

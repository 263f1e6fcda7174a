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
#include "simulator/start.h"

namespace kestrel::simulator {

struct Call {
  const char* operation;
  std::string argument = {};       // as recorded; empty if the operation takes none
  std::optional<int> device = {};  // the device that it names; the current one if not set
};

// What HIP keeps for each host thread.
struct ThreadState {
  std::uint64_t installation = 0;  // of the machine that the other fields belong to
  int current_device = 0;
  hipError_t last_error = hipSuccess;
};

// A simulated machine and the state of the runtime over it. Not thread-safe: see WithRuntime.
class Runtime {
 public:
  // `installation` numbers the machines that were installed in turn.
  Runtime(Start start, Recording recording, std::uint64_t installation);

  // Records the call. Returns the status of the fault that it meets, or hipSuccess.
  hipError_t Admit(const Call& call);

  // Like `Admit`, but fails when the machine has no devices.
  hipError_t AdmitToDevices(const Call& call);

  // `claimed_device_count` if set, otherwise the number of devices.
  [[nodiscard]] int DeviceCount() const;
  // Without devices the runtime does not start, unless `claimed_device_count` is set.
  [[nodiscard]] bool Started() const;
  // Returns null if there is no such device.
  [[nodiscard]] const Device* DeviceAt(int index) const;

  // Returns `hipErrorInvalidDevice` if there is no such device, `hipErrorOutOfMemory` if less is
  // free.
  hipError_t Allocate(int device, std::size_t size, void** address);
  // Returns `hipErrorInvalidDevicePointer` if the address was not allocated.
  hipError_t Release(void* address);

  // Returns the state of the calling thread.
  [[nodiscard]] ThreadState& Thread() const;

  [[nodiscard]] const std::vector<std::string>& calls() const { return calls_; }
  [[nodiscard]] std::uint64_t installation() const { return installation_; }
  [[nodiscard]] int release() const { return release_; }

 private:
  struct Allocation {
    int device;
    std::size_t size;
  };

  Machine machine_;
  int release_;
  std::vector<int> matched_calls_;  // for each fault
  Recording recording_;
  std::vector<std::string> calls_;
  std::map<std::uintptr_t, Allocation> allocations_;
  std::uintptr_t next_address_;
  std::uint64_t installation_;
};

std::mutex& RuntimeMutex();

// The process's one runtime. The caller holds the mutex.
Runtime& TheRuntime();

template <typename Action>
auto WithRuntime(Action action) {
  const std::lock_guard lock(RuntimeMutex());
  return action(TheRuntime());
}

}  // namespace kestrel::simulator

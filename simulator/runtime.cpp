#include "simulator/runtime.h"

#include <cstddef>
#include <limits>
#include <utility>

#include "simulator/release.h"

namespace kestrel::simulator {

namespace {

// Outside the address space of a program on x86-64: a host that reads device memory as its own
// faults there, as with a real card.
constexpr std::uintptr_t kFirstAddress = std::uintptr_t{1} << 56;
constexpr std::uintptr_t kPage = 4096;

bool Matches(const Fault& fault, const Call& call, int current_device) {
  return fault.operation == call.operation &&
         (!fault.device || *fault.device == call.device.value_or(current_device));
}

}  // namespace

Runtime::Runtime(Start start, Recording recording, std::uint64_t installation)
    : machine_(std::move(start.machine)),
      release_(start.release),
      matched_calls_(machine_.faults.size()),
      recording_(recording),
      next_address_(kFirstAddress),
      installation_(installation) {}

// Every matching fault counts the call; the first one in the list that strikes decides the status.
hipError_t Runtime::Admit(const Call& call) {
  if (recording_ == Recording::kOn) {
    calls_.push_back(std::string(call.operation) + "(" + call.argument + ")");
  }
  const int current_device = Thread().current_device;
  hipError_t status = hipSuccess;
  for (std::size_t i = 0; i < machine_.faults.size(); ++i) {
    const Fault& fault = machine_.faults[i];
    if (!Matches(fault, call, current_device)) {
      continue;
    }
    ++matched_calls_[i];
    if (status == hipSuccess && fault.call.value_or(matched_calls_[i]) == matched_calls_[i]) {
      status = fault.status;
    }
  }
  return status;
}

hipError_t Runtime::AdmitToDevices(const Call& call) {
  const hipError_t status = Admit(call);
  return status == hipSuccess && !Started() ? StatusWithoutDevices(release_) : status;
}

int Runtime::DeviceCount() const {
  return machine_.claimed_device_count.value_or(static_cast<int>(machine_.devices.size()));
}

bool Runtime::Started() const {
  return !machine_.devices.empty() || machine_.claimed_device_count.has_value();
}

const Device* Runtime::DeviceAt(int index) const {
  const auto position = static_cast<std::size_t>(index);  // of a negative index, beyond any list
  return position < machine_.devices.size() ? &machine_.devices[position] : nullptr;
}

hipError_t Runtime::Allocate(int device, std::size_t size, void** address) {
  if (DeviceAt(device) == nullptr) {
    return hipErrorInvalidDevice;
  }
  Device& owner = machine_.devices[static_cast<std::size_t>(device)];
  const std::uintptr_t space = std::numeric_limits<std::uintptr_t>::max() - next_address_ - kPage;
  if (size > owner.free_memory || size > space) {
    return hipErrorOutOfMemory;
  }
  allocations_[next_address_] = {device, size};
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the address is never read.
  *address = reinterpret_cast<void*>(next_address_);
  next_address_ += (size + kPage - 1) / kPage * kPage;
  owner.free_memory -= size;
  return hipSuccess;
}

hipError_t Runtime::Release(void* address) {
  const auto found = allocations_.find(reinterpret_cast<std::uintptr_t>(address));
  if (found == allocations_.end()) {
    return hipErrorInvalidDevicePointer;
  }
  const Allocation& allocation = found->second;
  machine_.devices[static_cast<std::size_t>(allocation.device)].free_memory += allocation.size;
  allocations_.erase(found);
  return hipSuccess;
}

ThreadState& Runtime::Thread() const {
  thread_local ThreadState state;
  if (state.installation != installation_) {
    state = {};
    state.installation = installation_;
  }
  return state;
}

// Never destroyed, like the runtime below: a host may free device memory in its static destructors.
std::mutex& RuntimeMutex() {
  static std::mutex& mutex = *new std::mutex;
  return mutex;
}

Runtime& TheRuntime() {
  static Runtime& runtime = *new Runtime(StartOfRuntime(), Recording::kOff, 1);
  return runtime;
}

void Install(Machine machine, Recording recording, int release) {
  WithRuntime([&](Runtime& runtime) {
    runtime = Runtime({std::move(machine), release}, recording, runtime.installation() + 1);
  });
}

std::vector<std::string> RecordedCalls() {
  return WithRuntime([](const Runtime& runtime) { return runtime.calls(); });
}

int CurrentDevice() {
  return WithRuntime([](const Runtime& runtime) { return runtime.Thread().current_device; });
}

}  // namespace kestrel::simulator

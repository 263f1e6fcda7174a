// Loads a HIP runtime, calls every operation of the simulator and prints the status and the
// outputs, each of which holds 7 before the call.
//
//   every_call <file of the runtime> [every-status]

#include <hip/hip_runtime_api.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>

#include "simulator/device_properties.h"
#include "tests/simulator/shared_library.h"

namespace kestrel::tests {

namespace {

using simulator::PropertiesR0000;
using simulator::PropertiesR0600;

constexpr int kBefore = 7;

// HIP's header turns some of the operations into macros or overloads, so their types stand here.
class HipLibrary {
 public:
  explicit HipLibrary(const char* file) : library_(LoadLibraryFile(file)) {
    if (library_ == nullptr) {
      std::cout << file << " cannot be loaded" << std::endl;
      std::exit(EXIT_FAILURE);
    }
  }

  // Returns null if the runtime does not export the function.
  template <typename... Arguments>
  auto Find(const char* name) const {
    return reinterpret_cast<hipError_t (*)(Arguments...)>(FindFunction(library_, name));
  }

  [[nodiscard]] std::string Text(const char* name, hipError_t status) const {
    const auto text = reinterpret_cast<const char* (*)(hipError_t)>(FindFunction(library_, name));
    return text(status);
  }

 private:
  void* library_;
};

template <typename... Outputs>
void Report(const std::string& call, hipError_t status, const Outputs&... outputs) {
  std::cout << call << ": " << static_cast<int>(status);
  ((std::cout << ", " << outputs), ...);
  std::cout << std::endl;
}

void CallLastErrors(const HipLibrary& hip) {
  const auto get_last_error = hip.Find<>("hipGetLastError");
  Report("hipPeekAtLastError", hip.Find<>("hipPeekAtLastError")());
  Report("hipGetLastError", get_last_error());
  Report("hipGetLastError again", get_last_error());
}

void CallVersions(const HipLibrary& hip) {
  for (const std::string name : {"hipRuntimeGetVersion", "hipDriverGetVersion"}) {
    const auto get_version = hip.Find<int*>(name.c_str());
    int version = kBefore;
    const hipError_t status = get_version(&version);
    Report(name, status, version);
    Report(name + " to null", get_version(nullptr));
  }
}

void CallDevices(const HipLibrary& hip) {
  const auto get_device_count = hip.Find<int*>("hipGetDeviceCount");
  int count = kBefore;
  hipError_t status = get_device_count(&count);
  Report("hipGetDeviceCount", status, count);
  Report("hipGetDeviceCount to null", get_device_count(nullptr));
  const auto get_device = hip.Find<int*>("hipGetDevice");
  int device = kBefore;
  status = get_device(&device);
  Report("hipGetDevice", status, device);
  Report("hipGetDevice to null", get_device(nullptr));
  const auto set_device = hip.Find<int>("hipSetDevice");
  for (const int index : {-1, 1, 0}) {
    Report("hipSetDevice " + std::to_string(index), set_device(index));
  }
}

template <typename Record>
void CallProperties(const HipLibrary& hip, const std::string& name) {
  const auto get_properties = hip.Find<Record*, int>(name.c_str());
  if (get_properties == nullptr) {
    std::cout << name << " is not exported" << std::endl;
    return;
  }
  for (const int index : {0, 1, -1}) {
    struct {
      Record record;
      std::uint64_t behind;
    } buffer{};
    buffer.record.name[0] = '7';
    buffer.record.integrated = kBefore;
    buffer.behind = kBefore;
    const hipError_t status = get_properties(&buffer.record, index);
    Report(name + " " + std::to_string(index), status, buffer.record.name, buffer.record.arch,
           buffer.record.integrated, buffer.record.total_global_memory, buffer.behind);
  }
  Report(name + " to null", get_properties(nullptr, 0));
}

void CallNames(const HipLibrary& hip) {
  const auto get_name = hip.Find<char*, int, int>("hipDeviceGetName");
  for (const int index : {0, 1, -1}) {
    char name[32] = "7";
    const hipError_t status = get_name(name, sizeof name, index);
    Report("hipDeviceGetName " + std::to_string(index), status, name);
  }
  Report("hipDeviceGetName to null", get_name(nullptr, 8, 0));
  char unwritten = '7';
  const hipError_t status = get_name(&unwritten, 0, 0);
  Report("hipDeviceGetName of length 0", status, unwritten);
}

void ReportMemory(const HipLibrary& hip, const std::string& when) {
  std::size_t free = kBefore;
  std::size_t total = kBefore;
  const hipError_t status = hip.Find<std::size_t*, std::size_t*>("hipMemGetInfo")(&free, &total);
  Report("hipMemGetInfo " + when, status, free, total);
}

void CallMemory(const HipLibrary& hip) {
  ReportMemory(hip, "at first");
  Report("hipMemGetInfo to null",
         hip.Find<std::size_t*, std::size_t*>("hipMemGetInfo")(nullptr, nullptr));
  const auto malloc = hip.Find<void**, std::size_t>("hipMalloc");
  const auto free = hip.Find<void*>("hipFree");
  void* memory = nullptr;
  hipError_t status = malloc(&memory, 4096);
  Report("hipMalloc", status, memory != nullptr);
  ReportMemory(hip, "after it");
  void* none = nullptr;
  status = malloc(&none, 0);
  Report("hipMalloc of 0 bytes", status, none != nullptr);
  Report("hipMalloc to null", malloc(nullptr, 1));
  Report("hipFree", free(memory));
  ReportMemory(hip, "after that");
  Report("hipFree of null", free(nullptr));
  Report("hipFree of an unknown address", free(&memory));
}

void CallInit(const HipLibrary& hip) {
  const auto init = hip.Find<unsigned int>("hipInit");
  Report("hipInit", init(0));
  Report("hipInit with flags", init(1));
}

// Includes numbers that are no status.
void CallErrorTexts(const HipLibrary& hip, int end) {
  for (int number = 0; number < end; ++number) {
    const auto status = static_cast<hipError_t>(number);
    std::cout << number << ": " << hip.Text("hipGetErrorName", status) << ", "
              << hip.Text("hipGetErrorString", status) << '\n';
  }
}

// Begins with hipGetDeviceCount, as programs do: in HIP 5.7 the first call of a process has another
// status without a device than the same call later.
void CallAll(const HipLibrary& hip) {
  CallDevices(hip);
  CallLastErrors(hip);
  CallVersions(hip);
  CallLastErrors(hip);
  CallProperties<PropertiesR0000>(hip, "hipGetDeviceProperties");
  CallProperties<PropertiesR0000>(hip, "hipGetDevicePropertiesR0000");
  CallProperties<PropertiesR0600>(hip, "hipGetDevicePropertiesR0600");
  CallNames(hip);
  CallMemory(hip);
  CallInit(hip);
  CallLastErrors(hip);
  std::thread(CallLastErrors, hip).join();
}

}  // namespace

}  // namespace kestrel::tests

int main(int argc, char** argv) {
  const kestrel::tests::HipLibrary hip(argc > 1 ? argv[1] : "");
  kestrel::tests::CallAll(hip);
  kestrel::tests::CallErrorTexts(hip, argc > 2 ? 1100 : 4);
}

// Calls every operation of the simulator and prints the status and the outputs, each of which holds
// 7 before the call.

#include <hip/hip_runtime_api.h>
#include <hip/hip_version.h>

#include <cstddef>
#include <iostream>
#include <string>
#include <thread>

namespace {

constexpr int kBefore = 7;

template <typename... Outputs>
void Report(const std::string& call, hipError_t status, const Outputs&... outputs) {
  std::cout << call << ": " << static_cast<int>(status);
  ((std::cout << ", " << outputs), ...);
  std::cout << std::endl;
}

void CallLastErrors() {
  Report("hipPeekAtLastError", hipPeekAtLastError());
  Report("hipGetLastError", hipGetLastError());
  Report("hipGetLastError again", hipGetLastError());
}

std::string VersionText(int version) {
  return version == HIP_VERSION ? "that of the header" : std::to_string(version);
}

void CallVersions() {
  int version = kBefore;
  hipError_t status = hipRuntimeGetVersion(&version);
  Report("hipRuntimeGetVersion", status, VersionText(version));
  version = kBefore;
  status = hipDriverGetVersion(&version);
  Report("hipDriverGetVersion", status, VersionText(version));
  Report("hipRuntimeGetVersion to null", hipRuntimeGetVersion(nullptr));
  Report("hipDriverGetVersion to null", hipDriverGetVersion(nullptr));
}

void CallDevices() {
  int count = kBefore;
  hipError_t status = hipGetDeviceCount(&count);
  Report("hipGetDeviceCount", status, count);
  Report("hipGetDeviceCount to null", hipGetDeviceCount(nullptr));
  int device = kBefore;
  status = hipGetDevice(&device);
  Report("hipGetDevice", status, device);
  Report("hipGetDevice to null", hipGetDevice(nullptr));
  for (const int index : {0, 1, -1}) {
    Report("hipSetDevice " + std::to_string(index), hipSetDevice(index));
  }
}

void CallProperties() {
  for (const int index : {0, 1, -1}) {
    hipDeviceProp_t properties{};
    properties.name[0] = '7';
    properties.integrated = kBefore;
    const hipError_t status = hipGetDeviceProperties(&properties, index);
    Report("hipGetDeviceProperties " + std::to_string(index), status, properties.name,
           properties.gcnArchName, properties.integrated, properties.totalGlobalMem);
    char name[32] = "7";
    const hipError_t name_status = hipDeviceGetName(name, sizeof name, index);
    Report("hipDeviceGetName " + std::to_string(index), name_status, name);
  }
  Report("hipGetDeviceProperties to null", hipGetDeviceProperties(nullptr, 0));
  Report("hipDeviceGetName to null", hipDeviceGetName(nullptr, 8, 0));
  char unwritten = '7';
  const hipError_t status = hipDeviceGetName(&unwritten, 0, 0);
  Report("hipDeviceGetName of length 0", status, unwritten);
}

void ReportMemory(const std::string& when) {
  std::size_t free = kBefore;
  std::size_t total = kBefore;
  const hipError_t status = hipMemGetInfo(&free, &total);
  Report("hipMemGetInfo " + when, status, free, total);
}

void CallMemory() {
  ReportMemory("at first");
  Report("hipMemGetInfo to null", hipMemGetInfo(nullptr, nullptr));
  void* memory = nullptr;
  hipError_t status = hipMalloc(&memory, 4096);
  Report("hipMalloc", status, memory != nullptr);
  ReportMemory("after it");
  void* none = nullptr;
  status = hipMalloc(&none, 0);
  Report("hipMalloc of 0 bytes", status, none != nullptr);
  Report("hipMalloc to null", hipMalloc(static_cast<void**>(nullptr), 1));
  Report("hipFree", hipFree(memory));
  ReportMemory("after that");
  Report("hipFree of null", hipFree(nullptr));
  Report("hipFree of an unknown address", hipFree(&memory));
}

// Includes numbers that are no status.
void CallErrorTexts(int end) {
  for (int number = 0; number < end; ++number) {
    const auto status = static_cast<hipError_t>(number);
    std::cout << number << ": " << hipGetErrorName(status) << ", " << hipGetErrorString(status)
              << '\n';
  }
}

}  // namespace

// With an argument, prints the texts of every status, not only of the first few.
int main(int argc, char** /*argv*/) {
  CallLastErrors();
  CallVersions();
  CallLastErrors();
  CallDevices();
  CallLastErrors();
  CallProperties();
  CallMemory();
  Report("hipInit", hipInit(0));
  Report("hipInit with flags", hipInit(1));
  CallLastErrors();
  std::thread(CallLastErrors).join();
  CallErrorTexts(argc > 1 ? 1100 : 4);
}

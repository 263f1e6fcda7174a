// The GPU survey over a runtime that reports anything: counts below 0, failures at any step, names
// without an end. The input is what the runtime reports, call by call.

#include <fuzzer/FuzzedDataProvider.h>
#include <hip/hip_runtime_api.h>

#include <cstring>
#include <vector>

#include "fuzz/property.h"
#include "system/gpu_survey.h"

namespace {

struct Runtime {
  FuzzedDataProvider* input = nullptr;
  int count = 0;
  bool failed = false;
  std::vector<hipDeviceProp_t> devices;
  std::vector<std::size_t> totals;
};
Runtime runtime;

hipError_t Status() {
  runtime.failed = runtime.input->ConsumeIntegralInRange(0, 31) == 31;
  return runtime.failed ? static_cast<hipError_t>(runtime.input->ConsumeIntegral<int>() | 1)
                        : hipSuccess;
}

}  // namespace

extern "C" {

hipError_t hipGetDeviceCount(int* count) {
  *count = runtime.count;
  return Status();
}

hipError_t hipGetDeviceProperties(hipDeviceProp_t* properties, int /*device*/) {
  std::string bytes = runtime.input->ConsumeRandomLengthString(sizeof(*properties));
  bytes.resize(sizeof(*properties), runtime.input->ConsumeIntegral<char>());
  std::memcpy(static_cast<void*>(properties), bytes.data(), bytes.size());
  runtime.devices.push_back(*properties);
  return Status();
}

hipError_t hipSetDevice(int /*device*/) { return Status(); }

hipError_t hipMemGetInfo(std::size_t* free, std::size_t* total) {
  *free = runtime.input->ConsumeIntegral<std::size_t>();
  *total = runtime.input->ConsumeIntegral<std::size_t>();
  runtime.totals.push_back(*total);
  return Status();
}

}  // extern "C"

namespace kestrel::fuzz {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  runtime = {};
  runtime.input = &input;
  runtime.count = input.ConsumeIntegralInRange(-4, 8);
  const auto [result, gpus] = system::SurveyGpus();
  if (runtime.failed) {
    Require(gpus.empty(), "a failure leaves no GPU");
    Require(result.code == (runtime.devices.empty() ? system::ResultCode::NoDevices
                                                    : system::ResultCode::DeviceQueryFailed),
            "a failure has the code of its step");
    Require(result.message.rfind("Error trying to query ROCm gpus: ", 0) == 0,
            "a failure has its message");
    return 0;
  }
  Require(result.code == system::ResultCode::Success && result.message.empty(), "it succeeds");
  Require(gpus.size() == static_cast<std::size_t>(std::max(runtime.count, 0)),
          "there are as many GPUs as the runtime counts");
  for (std::size_t i = 0; i < gpus.size(); ++i) {
    const hipDeviceProp_t& device = runtime.devices.at(i);
    Require(gpus[i].deviceId == static_cast<int>(i), "the GPUs are in order");
    Require(gpus[i].name == std::string(device.name, strnlen(device.name, sizeof(device.name))),
            "a name is that of the record, up to its end");
    Require(gpus[i].otherInfo.at("gcnArchName") ==
                std::string(device.gcnArchName,
                            strnlen(device.gcnArchName, sizeof(device.gcnArchName))),
            "an architecture is that of the record, up to its end");
    Require(gpus[i].totalMemory == runtime.totals.at(i), "the memory is what can be allocated");
  }
  return 0;
}

}  // namespace kestrel::fuzz

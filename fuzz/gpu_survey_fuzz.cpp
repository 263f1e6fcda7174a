// The GPU survey over a runtime that reports anything. The input is what it reports.

#include <cstring>
#include <string>

#include "fuzz/answering_runtime.h"
#include "fuzz/property.h"
#include "system/gpu_survey.h"

namespace kestrel::fuzz {

namespace {

// The message of the first failure; empty if there is none.
std::string FailureOf(const ReportedMachine& machine) {
  const std::string beginning = "Error trying to query ROCm gpus: ";
  if (machine.counted != hipSuccess) {
    return beginning + "No hip devices found!";
  }
  for (std::size_t i = 0; i < machine.devices.size(); ++i) {
    const ReportedDevice& device = machine.devices[i];
    const char* step = device.queried != hipSuccess ? "Failed to get memory info for" : nullptr;
    step = device.selected != hipSuccess ? "Failed to set" : step;
    step = device.described != hipSuccess ? "Invalid" : step;
    if (step != nullptr) {
      return beginning + step + " hip device at device id'" + std::to_string(i) + "'";
    }
  }
  return "";
}

template <std::size_t kSize>
std::string TextOf(const char (&field)[kSize]) {
  return {field, strnlen(field, kSize)};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const ReportedMachine& machine = ReportFrom(input);
  const auto [result, gpus] = system::SurveyGpus();
  const std::string failure = FailureOf(machine);
  Require(result.message == failure, "the message is that of the first failure");
  if (!failure.empty()) {
    Require(gpus.empty(), "a failure leaves no GPU");
    Require(result.code == (machine.counted != hipSuccess ? system::ResultCode::NoDevices
                                                          : system::ResultCode::DeviceQueryFailed),
            "a failure has the code of its step");
    return 0;
  }
  Require(result.code == system::ResultCode::Success, "without a failure the survey succeeds");
  Require(gpus.size() == machine.devices.size(), "there is a GPU for each device");
  for (std::size_t i = 0; i < gpus.size(); ++i) {
    const ReportedDevice& device = machine.devices[i];
    Require(gpus[i].deviceId == static_cast<int>(i), "the GPUs are in order");
    Require(gpus[i].name == TextOf(device.properties.name) &&
                gpus[i].otherInfo.at("gcnArchName") == TextOf(device.properties.gcnArchName),
            "the names are those of the record, up to their ends");
    Require((gpus[i].integrationType == system::GpuIntegrationType::Integrated) ==
                (device.properties.integrated != 0),
            "a GPU is integrated if the record says so");
    Require(gpus[i].totalMemory == device.total, "the memory is what can be allocated");
  }
  return 0;
}

}  // namespace kestrel::fuzz

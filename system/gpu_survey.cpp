#include "system/gpu_survey.h"

#include <hip/hip_runtime_api.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>

// Message texts are fixed, including their wording.

namespace kestrel::system {

namespace {

// A runtime may fill the whole array, without a terminating NUL.
template <std::size_t kSize>
std::string TextOf(const char (&field)[kSize]) {
  return {std::begin(field), std::find(std::begin(field), std::end(field), '\0')};
}

Result DeviceFailure(const char* step, int device) {
  return {ResultCode::DeviceQueryFailed, step + std::to_string(device) + "'"};
}

Result DescribeDevice(int device, GpuInfo& gpu) {
  hipDeviceProp_t properties{};
  if (hipGetDeviceProperties(&properties, device) != hipSuccess) {
    return DeviceFailure("Invalid hip device at device id'", device);
  }
  if (hipSetDevice(device) != hipSuccess) {
    return DeviceFailure("Failed to set hip device at device id'", device);
  }
  std::size_t free = 0;
  std::size_t total = 0;
  if (hipMemGetInfo(&free, &total) != hipSuccess) {
    return DeviceFailure("Failed to get memory info for hip device at device id'", device);
  }
  gpu.name = TextOf(properties.name);
  gpu.deviceId = device;
  gpu.integrationType =
      properties.integrated != 0 ? GpuIntegrationType::Integrated : GpuIntegrationType::Discrete;
  // Not the properties' own memory size: allocations count against this figure.
  gpu.totalMemory = total;
  gpu.detectionPlatform = GpuSoftwarePlatform::ROCm;
  gpu.otherInfo.emplace("gcnArchName", TextOf(properties.gcnArchName));
  return {ResultCode::Success, {}};
}

// Describes devices until one fails; the list then holds those before it. Nothing is reserved for
// the count, which a faulty runtime may report as any number.
Result EnumerateDevices(std::vector<GpuInfo>& gpus) {
  int count = 0;
  if (hipGetDeviceCount(&count) != hipSuccess) {
    return {ResultCode::NoDevices, "No hip devices found!"};
  }
  for (int device = 0; device < count; ++device) {
    GpuInfo gpu;
    Result described = DescribeDevice(device, gpu);
    if (described.code != ResultCode::Success) {
      return described;
    }
    gpus.push_back(std::move(gpu));
  }
  return {ResultCode::Success, {}};
}

}  // namespace

std::pair<Result, std::vector<GpuInfo>> SurveyGpus() {
  std::vector<GpuInfo> gpus;
  Result result = EnumerateDevices(gpus);
  if (result.code != ResultCode::Success) {
    result.message.insert(0, "Error trying to query ROCm gpus: ");
    gpus.clear();
  }
  return {std::move(result), std::move(gpus)};
}

}  // namespace kestrel::system

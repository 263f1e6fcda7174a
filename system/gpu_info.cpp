#include "system/gpu_info.h"

namespace kestrel::system {

GpuInfo::GpuInfo() = default;
GpuInfo::GpuInfo(const GpuInfo& other) = default;
GpuInfo::GpuInfo(GpuInfo&& other) noexcept = default;
GpuInfo& GpuInfo::operator=(const GpuInfo& other) = default;
GpuInfo& GpuInfo::operator=(GpuInfo&& other) noexcept = default;
GpuInfo::~GpuInfo() = default;

std::string GpuIntegrationTypeToStr(GpuIntegrationType type) {
  switch (type) {
    case GpuIntegrationType::Integrated:
      return "Integrated";
    case GpuIntegrationType::Discrete:
      return "Discrete";
    case GpuIntegrationType::Unknown:
      break;
  }
  return "Unknown";
}

std::string GpuSoftwarePlatformToStr(GpuSoftwarePlatform platform) {
  switch (platform) {
    case GpuSoftwarePlatform::ROCm:
      return "ROCm";
    case GpuSoftwarePlatform::Cuda:
      return "Cuda";
    case GpuSoftwarePlatform::OpenCl:
      return "OpenCl";
    case GpuSoftwarePlatform::Metal:
      return "Metal";
    case GpuSoftwarePlatform::DirectML:
      return "DirectML";
    case GpuSoftwarePlatform::Vulkan:
      return "Vulkan";
    case GpuSoftwarePlatform::Unknown:
      break;
  }
  return "Unknown";
}

}  // namespace kestrel::system

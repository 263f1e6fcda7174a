#pragma once

#include <kestrelcore_export.h>

#include <cstdint>
#include <string>
#include <unordered_map>

namespace kestrel::system {

/// Whether a GPU is part of the processor. The numbers cross the library boundary and never change.
enum class GpuIntegrationType : std::int32_t {
  Unknown = 0,
  Integrated = 1,  ///< Part of the processor package; shares the system's memory.
  Discrete = 2,    ///< A device of its own.
};

/// The software platform through which a GPU was found. The survey here assigns only `ROCm`; the
/// other values let a host describe GPUs that it found by other means. The numbers cross the
/// library boundary and never change.
enum class GpuSoftwarePlatform : std::int32_t {
  Unknown = 0,
  ROCm = 1,
  Cuda = 2,
  OpenCl = 3,
  Metal = 4,
  DirectML = 5,
  Vulkan = 6,
};

/// One graphics processor. A plain value: a copy shares nothing with its source. Not synchronised:
/// concurrent use of one record, where one thread writes, needs the caller's lock.
struct GpuInfo {
  std::string name;               ///< As the detection platform reports it.
  std::int32_t deviceId = -1;     ///< Index within the detection platform; -1 if none is assigned.
  std::uint64_t totalMemory = 0;  ///< Bytes.
  std::uint64_t dedicatedMemory = 0;  ///< Bytes. No survey here fills it: always 0.
  GpuIntegrationType integrationType = GpuIntegrationType::Unknown;
  GpuSoftwarePlatform detectionPlatform = GpuSoftwarePlatform::Unknown;
  std::string detectionPlatformVersion;  ///< No survey here fills it: always empty.
  /// Further properties by name. The survey here stores one: "gcnArchName", the architecture name
  /// of the HIP runtime ("gfx1030").
  std::unordered_map<std::string, std::string> otherInfo;

  KESTRELCORE_EXPORT GpuInfo();
  KESTRELCORE_EXPORT GpuInfo(const GpuInfo& other);
  KESTRELCORE_EXPORT GpuInfo(GpuInfo&& other) noexcept;
  KESTRELCORE_EXPORT GpuInfo& operator=(const GpuInfo& other);
  KESTRELCORE_EXPORT GpuInfo& operator=(GpuInfo&& other) noexcept;
  KESTRELCORE_EXPORT ~GpuInfo();
};

/// "Integrated" or "Discrete"; "Unknown" for every other value. Pure; throws only
/// std::bad_alloc.
[[nodiscard]] KESTRELCORE_EXPORT std::string GpuIntegrationTypeToStr(GpuIntegrationType type);

/// "ROCm", "Cuda", "OpenCl", "Metal", "DirectML" or "Vulkan" (these spellings are part of the
/// interface); "Unknown" for every other value. Pure; throws only std::bad_alloc.
[[nodiscard]] KESTRELCORE_EXPORT std::string GpuSoftwarePlatformToStr(GpuSoftwarePlatform platform);

}  // namespace kestrel::system

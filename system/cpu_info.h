#pragma once

#include <kestrelcore_export.h>

#include <cstdint>
#include <string>
#include <unordered_set>

namespace kestrel::system {

/// The processor's architecture. The numbers cross the library boundary and never change.
enum class CpuArchitecture : std::int32_t {
  x86_64 = 0,
  ARM64 = 1,    ///< Also 32-bit Arm.
  Unknown = 2,  ///< Not surveyed, or the survey failed.
};

/// A vector instruction-set extension. The numbers cross the library boundary and never change.
enum class CpuInstructionSetExtension : std::int32_t {
  AVX = 0,      ///< x86 Advanced Vector Extensions.
  AVX2 = 1,     ///< x86 Advanced Vector Extensions 2.
  AdvSIMD = 2,  ///< Arm Advanced SIMD, for hosts to use. No survey here detects it.
};

/// What the processor implements. A plain value: a copy shares nothing with its source. Not
/// synchronised: concurrent use of one record, where one thread writes, needs the caller's lock.
struct CpuInfo {
  CpuArchitecture architecture = CpuArchitecture::Unknown;
  /// Each supported extension once. In no particular order: `CpuInstructionSetExtensionsToStr`
  /// sorts.
  std::unordered_set<CpuInstructionSetExtension> supportedInstructionSetExtensions;

  KESTRELCORE_EXPORT CpuInfo();
  KESTRELCORE_EXPORT CpuInfo(const CpuInfo& other);
  KESTRELCORE_EXPORT CpuInfo(CpuInfo&& other) noexcept;
  KESTRELCORE_EXPORT CpuInfo& operator=(const CpuInfo& other);
  KESTRELCORE_EXPORT CpuInfo& operator=(CpuInfo&& other) noexcept;
  KESTRELCORE_EXPORT ~CpuInfo();
};

/// The architecture's display name: "x86_64", "ARM64" or "Unknown". A value outside the
/// enumeration gives "x86_64", the only architecture that this library is built for. Pure;
/// throws only std::bad_alloc.
[[nodiscard]] KESTRELCORE_EXPORT std::string CpuArchitectureToStr(CpuArchitecture architecture);

/// The extension's display name: "AVX", "AVX2" or "AdvSIMD". A value outside the enumeration
/// gives "AVX". Pure; throws only std::bad_alloc.
[[nodiscard]] KESTRELCORE_EXPORT std::string CpuInstructionSetExtensionToStr(
    CpuInstructionSetExtension extension);

/// The display names of all elements in ascending enumerator value, joined by ", "; empty for an
/// empty set. Pure; throws only std::bad_alloc.
[[nodiscard]] KESTRELCORE_EXPORT std::string CpuInstructionSetExtensionsToStr(
    const std::unordered_set<CpuInstructionSetExtension>& extensions);

}  // namespace kestrel::system

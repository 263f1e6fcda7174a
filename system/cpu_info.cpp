#include "system/cpu_info.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kestrel::system {

CpuInfo::CpuInfo() = default;
CpuInfo::CpuInfo(const CpuInfo& other) = default;
CpuInfo::CpuInfo(CpuInfo&& other) noexcept = default;
CpuInfo& CpuInfo::operator=(const CpuInfo& other) = default;
CpuInfo::~CpuInfo() = default;

// Not defaulted: a container that is move-assigned to itself may lose its elements.
CpuInfo& CpuInfo::operator=(CpuInfo&& other) noexcept {
  architecture = other.architecture;
  if (this != &other) {
    supportedInstructionSetExtensions = std::move(other.supportedInstructionSetExtensions);
  }
  return *this;
}

std::string CpuArchitectureToStr(CpuArchitecture architecture) {
  switch (architecture) {
    case CpuArchitecture::ARM64:
      return "ARM64";
    case CpuArchitecture::Unknown:
      return "Unknown";
    case CpuArchitecture::x86_64:
      break;
  }
  return "x86_64";
}

std::string CpuInstructionSetExtensionToStr(CpuInstructionSetExtension extension) {
  switch (extension) {
    case CpuInstructionSetExtension::AVX2:
      return "AVX2";
    case CpuInstructionSetExtension::AdvSIMD:
      return "AdvSIMD";
    case CpuInstructionSetExtension::AVX:
      break;
  }
  return "AVX";
}

// Sorted, because standard libraries differ in the iteration order of an unordered set.
std::string CpuInstructionSetExtensionsToStr(
    const std::unordered_set<CpuInstructionSetExtension>& extensions) {
  std::vector<CpuInstructionSetExtension> ascending(extensions.begin(), extensions.end());
  std::sort(ascending.begin(), ascending.end());
  std::string names;
  for (const CpuInstructionSetExtension extension : ascending) {
    if (!names.empty()) {
      names += ", ";
    }
    names += CpuInstructionSetExtensionToStr(extension);
  }
  return names;
}

}  // namespace kestrel::system

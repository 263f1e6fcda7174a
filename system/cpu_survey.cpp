#include "system/cpu_survey.h"

#include <cstdint>
#include <stdexcept>

#include "platform/platform.h"
#include "system/detect_cpu_info.h"

namespace kestrel::system {

namespace {

// wProcessorArchitecture of the Windows SYSTEM_INFO record (winnt.h, PROCESSOR_ARCHITECTURE_*).
constexpr std::uint16_t kArchitectureArm = 5;
constexpr std::uint16_t kArchitectureAmd64 = 9;
constexpr std::uint16_t kArchitectureArm64 = 12;

// Feature flags of CPUID (AMD64 Architecture Programmer's Manual volume 3, appendix E; Intel 64
// and IA-32 Architectures Software Developer's Manual volume 2A, "CPUID").
constexpr std::uint32_t kLeaf1EcxAvx = 0x10000000;  // bit 28
constexpr std::uint32_t kLeaf7EbxAvx2 = 0x20;       // bit 5

CpuArchitecture ToCpuArchitecture(std::uint16_t code) {
  switch (code) {
    case kArchitectureArm64:
    case kArchitectureArm:
      return CpuArchitecture::ARM64;
    case kArchitectureAmd64:
      return CpuArchitecture::x86_64;
    default:
      throw std::runtime_error("Unsupported processor architecture");
  }
}

}  // namespace

// The two flags are reported as they are, by contract: without a check of the highest leaf, of the
// operating system's support, or of one flag against the other.
CpuInfo DetectCpuInfo() {
  CpuInfo info;
  info.architecture = ToCpuArchitecture(platform::ProcessorArchitecture());
  if ((platform::Cpuid(1, 0).ecx & kLeaf1EcxAvx) != 0) {
    info.supportedInstructionSetExtensions.insert(CpuInstructionSetExtension::AVX);
  }
  if ((platform::Cpuid(7, 0).ebx & kLeaf7EbxAvx2) != 0) {
    info.supportedInstructionSetExtensions.insert(CpuInstructionSetExtension::AVX2);
  }
  return info;
}

std::pair<Result, CpuInfo> SurveyCpu() {
  CpuInfo info;
  try {
    info = DetectCpuInfo();
  } catch (const std::runtime_error& error) {
    return {Result{ResultCode::Failure, error.what()}, std::move(info)};
  }
  return {Result{ResultCode::Success, {}}, std::move(info)};
}

}  // namespace kestrel::system

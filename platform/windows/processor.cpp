#include <windows.h>

#include "platform/platform.h"

#ifdef _MSC_VER
#include <intrin.h>
#else
#include <cpuid.h>
#endif

namespace kestrel::platform {

std::uint16_t ProcessorArchitecture() noexcept {
  SYSTEM_INFO info{};
  GetSystemInfo(&info);
  return info.wProcessorArchitecture;
}

CpuidRegisters Cpuid(std::uint32_t leaf, std::uint32_t subleaf) noexcept {
#ifdef _MSC_VER
  int values[4] = {};
  __cpuidex(values, static_cast<int>(leaf), static_cast<int>(subleaf));
  return {static_cast<std::uint32_t>(values[0]), static_cast<std::uint32_t>(values[1]),
          static_cast<std::uint32_t>(values[2]), static_cast<std::uint32_t>(values[3])};
#else
  CpuidRegisters registers;
  __cpuid_count(leaf, subleaf, registers.eax, registers.ebx, registers.ecx, registers.edx);
  return registers;
#endif
}

std::optional<std::uint32_t> LogicalProcessorCount() noexcept {
  SYSTEM_INFO info{};
  GetSystemInfo(&info);
  return info.dwNumberOfProcessors;
}

}  // namespace kestrel::platform

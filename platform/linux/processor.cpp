#include <cpuid.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "platform/linux/machine_name.h"
#include "platform/platform.h"

namespace kestrel::platform {

std::uint16_t ProcessorArchitecture() noexcept {
  struct utsname names {};
  return uname(&names) == 0 ? ArchitectureOfMachineName(names.machine) : kArchitectureUnknown;
}

CpuidRegisters Cpuid(std::uint32_t leaf, std::uint32_t subleaf) noexcept {
  CpuidRegisters registers;
  __cpuid_count(leaf, subleaf, registers.eax, registers.ebx, registers.ecx, registers.edx);
  return registers;
}

std::uint32_t LogicalProcessorCount() noexcept {
  const long online = sysconf(_SC_NPROCESSORS_ONLN);
  return online < 1 ? 1 : static_cast<std::uint32_t>(online);
}

}  // namespace kestrel::platform

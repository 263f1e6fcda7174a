#include "platform/linux/machine_name.h"

namespace kestrel::platform {

namespace {

// PROCESSOR_ARCHITECTURE_* of winnt.h.
constexpr std::uint16_t kIntel = 0;
constexpr std::uint16_t kArm = 5;
constexpr std::uint16_t kAmd64 = 9;
constexpr std::uint16_t kArm64 = 12;

bool IsIntel32(std::string_view machine) noexcept {
  return machine.size() == 4 && machine[0] == 'i' && machine.substr(2) == "86";
}

}  // namespace

std::uint16_t ArchitectureOfMachineName(std::string_view machine) noexcept {
  if (machine == "x86_64") {
    return kAmd64;
  }
  if (machine == "aarch64") {
    return kArm64;
  }
  if (machine.substr(0, 3) == "arm") {
    return kArm;
  }
  return IsIntel32(machine) ? kIntel : kArchitectureUnknown;
}

}  // namespace kestrel::platform

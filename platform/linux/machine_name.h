#pragma once

#include <cstdint>
#include <string_view>

namespace kestrel::platform {

// PROCESSOR_ARCHITECTURE_UNKNOWN of winnt.h.
inline constexpr std::uint16_t kArchitectureUnknown = 0xFFFF;

// The seam's architecture code for the machine name that uname(2) gives.
[[nodiscard]] std::uint16_t ArchitectureOfMachineName(std::string_view machine) noexcept;

}  // namespace kestrel::platform

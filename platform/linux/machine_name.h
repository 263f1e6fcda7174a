#pragma once

#include <cstdint>
#include <string_view>

namespace kestrel::platform {

// PROCESSOR_ARCHITECTURE_UNKNOWN of winnt.h.
inline constexpr std::uint16_t kArchitectureUnknown = 0xFFFF;

// Returns the architecture code of the seam for a machine name of uname(2).
[[nodiscard]] std::uint16_t ArchitectureOfMachineName(std::string_view machine) noexcept;

}  // namespace kestrel::platform

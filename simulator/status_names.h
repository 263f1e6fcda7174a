#pragma once

#include <hip/hip_runtime_api.h>

#include <optional>
#include <string_view>

namespace kestrel::simulator {

// Returns "hipErrorNoDevice" and the like; "hipErrorUnknown" for a value that is no status. The
// text is static.
const char* StatusName(hipError_t status);

// Returns the status of that name; `nullopt` if there is none.
std::optional<hipError_t> StatusNamed(std::string_view name);

}  // namespace kestrel::simulator

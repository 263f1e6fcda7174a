#pragma once

#include <hip/hip_runtime_api.h>

#include <optional>
#include <string_view>

namespace kestrel::simulator {

// Returns "hipErrorNoDevice" and the like; "hipErrorUnknown" for a value that the runtimes do not
// name. The text is static.
const char* StatusName(hipError_t status);

// Returns "no ROCm-capable device is detected" and the like; "unknown error" for a value that the
// runtimes do not name. The text is static.
const char* StatusText(hipError_t status);

// Returns the status of that name; `nullopt` if there is none.
std::optional<hipError_t> StatusNamed(std::string_view name);

}  // namespace kestrel::simulator

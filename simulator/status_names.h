#pragma once

#include <hip/hip_runtime_api.h>

#include <optional>
#include <string_view>

namespace kestrel::simulator {

// "hipErrorNoDevice"; "hipErrorUnknown" for what is not a status. Lives as long as the process.
const char* StatusName(hipError_t status);

// The status of that name; nothing if there is none.
std::optional<hipError_t> StatusNamed(std::string_view name);

}  // namespace kestrel::simulator

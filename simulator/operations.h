#pragma once

#include <array>
#include <string_view>

namespace kestrel::simulator {

// The operations that return a status. A fault can name each of them.
constexpr std::array<std::string_view, 13> kOperationsWithStatus = {
    "hipInit",
    "hipRuntimeGetVersion",
    "hipDriverGetVersion",
    "hipGetDeviceCount",
    "hipGetDevice",
    "hipSetDevice",
    "hipGetDeviceProperties",
    "hipDeviceGetName",
    "hipMemGetInfo",
    "hipMalloc",
    "hipFree",
    "hipGetLastError",
    "hipPeekAtLastError",
};

}  // namespace kestrel::simulator

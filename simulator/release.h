#pragma once

#include <hip/hip_runtime_api.h>

// What differs between the releases of HIP. A release is the number that its runtime reports as its
// version: 10,000,000 times the major, 100,000 times the minor version, plus the patch number.

namespace kestrel::simulator {

// One release of each generation: those of Debian 12 and of Debian unstable in 2025, and
// ROCm 7.0.0. What is simulated of the first two was compared with them on a machine without a GPU,
// as was HIP 5.7.1. HIP 7 follows the vendor's list of changes alone.
constexpr int kHip5 = 50'221'153;
constexpr int kHip6 = 60'443'484;
constexpr int kHip7 = 70'051'831;

// Up to HIP 5.2 the text of a status is its name.
constexpr bool TextOfStatusIsItsName(int release) { return release < 50'300'000; }

// What an operation returns that needs a device, on a machine without one.
constexpr hipError_t StatusWithoutDevices(int release) {
  return release < 50'300'000 ? hipErrorInvalidDevice : hipErrorNoDevice;
}

// The last error of a thread after a call that returned `status`. Up to HIP 6 it is the status of
// the last call, so that a success clears it. Since HIP 7 it stays until hipGetLastError reads it,
// and hipErrorNotReady is no error.
constexpr hipError_t LastErrorAfter(hipError_t status, hipError_t last_error, int release) {
  const bool is_error = status != hipSuccess && status != hipErrorNotReady;
  return release < 70'000'000 || is_error ? status : last_error;
}

}  // namespace kestrel::simulator

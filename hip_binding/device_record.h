#pragma once

#include <cstddef>

#include "hip_binding/runtime_library.h"

// The record that describes a device, which HIP 6 changed together with the function that fills it.

namespace kestrel::hip_binding {

// One kind of the record: its function, and the offsets of the fields that the library reads.
struct DeviceRecord {
  const char* function;
  std::size_t size;              // bytes
  std::size_t name;              // offset of 256 characters
  std::size_t total_global_mem;  // offset of a std::size_t, bytes of memory
  std::size_t integrated;        // offset of an int, nonzero for an integrated GPU
  std::size_t gcn_arch_name;     // offset of 256 characters
};

// Measured from the headers of HIP 5.2.3, 5.7.1, 6.2.2 and 6.4.3. HIP 6 and later have both
// functions.
inline constexpr DeviceRecord kRecordOfHip5 = {"hipGetDeviceProperties", 792, 0, 256, 652, 396};
inline constexpr DeviceRecord kRecordOfHip6 = {
    "hipGetDevicePropertiesR0600", 1472, 0, 288, 396, 1160};

// The newest kind that the runtime fills; null if it has no function for either.
[[nodiscard]] const DeviceRecord* RecordOf(void* runtime) noexcept;

// Makes the function fill its record for the device and, if it returns 0, copies the fields above
// to `output`, a record of the kind `wanted`, whose other fields become 0. Returns the function's
// status.
int FillRecord(void* runtime, const DeviceRecord& wanted, void* output, int device);

}  // namespace kestrel::hip_binding

// Compares what operations.cpp assumes with the HIP header of this build, which it cannot include.

#include <hip/hip_runtime_api.h>

#include <cstddef>
#include <string_view>

#include "hip_binding/device_record.h"

// A header of HIP 6 or later renames the function by macro.
#define KESTREL_TEXT_OF(macro) #macro
#define KESTREL_EXPANDED_TEXT_OF(macro) KESTREL_TEXT_OF(macro)

namespace {

using kestrel::hip_binding::DeviceRecord;

constexpr bool IsHeadersRecord(const DeviceRecord& record) {
  return record.function == std::string_view(KESTREL_EXPANDED_TEXT_OF(hipGetDeviceProperties)) &&
         record.size <= sizeof(hipDeviceProp_t) && record.name == offsetof(hipDeviceProp_t, name) &&
         record.total_global_mem == offsetof(hipDeviceProp_t, totalGlobalMem) &&
         record.integrated == offsetof(hipDeviceProp_t, integrated) &&
         record.gcn_arch_name == offsetof(hipDeviceProp_t, gcnArchName);
}
static_assert(IsHeadersRecord(kestrel::hip_binding::kRecordOfHip5) ||
                  IsHeadersRecord(kestrel::hip_binding::kRecordOfHip6),
              "This HIP header describes devices by a record that hip_binding does not know.");

static_assert(sizeof(hipError_t) == sizeof(int) && hipSuccess == 0 && hipErrorNoDevice == 100);

}  // namespace

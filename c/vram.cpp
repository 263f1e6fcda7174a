#include <hip/hip_runtime_api.h>

#include "c/call.h"
#include "c/message.h"
#include "utils/diagnostic_line.h"
#include "utils/vram_rocm.h"

namespace kestrel::c {

namespace {

constexpr const char* kNoDevices = "No HIP devices found";

// 0 if the runtime cannot count its devices.
int DevicesOrNone() noexcept {
  int count = 0;
  return kestrel_utils::DeviceCount(count) == hipSuccess && count > 0 ? count : 0;
}

kestrel_status ReportHipFailure(const char* operation, int32_t device, hipError_t status,
                                kestrel_result* result) noexcept {
  if (result == nullptr) {
    return KESTREL_DEVICE_QUERY_FAILED;  // the C++ call writes nothing
  }
  Message message(result);
  (kestrel_utils::DiagnosticLine(message.Sink())
   << operation << " failed for device " << device << ": " << kestrel_utils::ErrorText(status))
      .EndLine();
  return Report(result, KESTREL_DEVICE_QUERY_FAILED, message.TextOr(operation));
}

// The figures in `memory` count only on success.
kestrel_status QueryDevice(int32_t device, kestrel_utils::DeviceMemory& memory,
                           kestrel_result* result) noexcept {
  const int count = DevicesOrNone();
  if (count == 0) {
    return Report(result, KESTREL_NO_DEVICES, kNoDevices);
  }
  if (device < 0 || device >= count) {
    return ReportInvalid(result, "The device number is not below the number of devices");
  }
  memory = kestrel_utils::QueryDeviceMemory(device);
  if (memory.selected != hipSuccess) {
    return ReportHipFailure("hipSetDevice", device, memory.selected, result);
  }
  if (memory.queried != hipSuccess) {
    return ReportHipFailure("hipMemGetInfo", device, memory.queried, result);
  }
  return ReportSuccess(result);
}

// Sets a figure that the caller may not have asked for.
void Set(uint64_t* figure, uint64_t value) noexcept {
  if (figure != nullptr) {
    *figure = value;
  }
}

}  // namespace

}  // namespace kestrel::c

using kestrel::c::DevicesOrNone;
using kestrel::c::Guarded;
using kestrel::c::kNoDevices;
using kestrel::c::Measure;
using kestrel::c::Message;
using kestrel::c::QueryDevice;
using kestrel::c::Report;
using kestrel::c::ReportInvalid;
using kestrel::c::ReportSuccess;
using kestrel::c::Set;

kestrel_status kestrel_gpu_memory(int32_t device, uint64_t* free_bytes, uint64_t* total_bytes,
                                  kestrel_result* result) {
  return Guarded(result, [&] {
    Set(free_bytes, 0);
    Set(total_bytes, 0);
    if (free_bytes == nullptr && total_bytes == nullptr) {
      return ReportInvalid(result, "Both pointers to outputs are null");
    }
    kestrel_utils::DeviceMemory memory;
    const kestrel_status status = QueryDevice(device, memory, result);
    if (status == KESTREL_OK) {
      Set(free_bytes, memory.free);
      Set(total_bytes, memory.total);
    }
    return status;
  });
}

kestrel_status kestrel_available_vram(uint64_t* bytes, kestrel_result* result) {
  return kestrel_gpu_memory(0, bytes, nullptr, result);
}

kestrel_status kestrel_machine_physical_vram(uint64_t* bytes, kestrel_result* result) {
  return Measure(bytes, uint64_t{0}, result, [&] {
    Message message(result);
    *bytes = static_cast<uint64_t>(
        kestrel_utils::getMachinePhysicalVRAM_ROCm(/*allDevices=*/true, message.Sink()));
    if (*bytes > 0 && !message.IsReported()) {
      return ReportSuccess(result);
    }
    if (DevicesOrNone() == 0) {
      return Report(result, KESTREL_NO_DEVICES, message.TextOr(kNoDevices));
    }
    return message.IsReported()
               ? Report(result, KESTREL_DEVICE_QUERY_FAILED, message.TextOr(kNoDevices))
               : ReportSuccess(result);
  });
}

#include "c/call.h"

#include <cstring>

namespace kestrel::c {

kestrel_status Report(kestrel_result* result, kestrel_status status, const char* message) noexcept {
  if (result != nullptr) {
    kestrel_result report{};
    report.status = status;
    CopyText(message, std::strlen(message), report.message);
    WriteRecord(result, result->struct_size, report);
  }
  return status;
}

// Only the GPU runtime throws anything but std::bad_alloc.
kestrel_status ReportException(kestrel_result* result) noexcept {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return Report(result, KESTREL_OUT_OF_MEMORY, "Out of memory");
  } catch (...) {
    return Report(result, KESTREL_RUNTIME_FAILED, "The GPU runtime threw an exception");
  }
}

kestrel_status BeginCall(kestrel_result* result) noexcept {
  if (!IsValidResult(result)) {
    return KESTREL_INVALID_ARGUMENT;
  }
  if (!ProcessorIsSupported()) {
    return Report(result, KESTREL_PROCESSOR_UNSUPPORTED,
                  "The processor lacks AVX2, or the operating system has not enabled it");
  }
  return KESTREL_OK;
}

}  // namespace kestrel::c

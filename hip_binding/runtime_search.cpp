#include "hip_binding/runtime_search.h"

#include <cstdio>

#include "hip_binding/device_record.h"

namespace kestrel::hip_binding {

namespace {

// Returns the first function that the library lacks; null if it has them all.
const char* MissingFunction(void* library) noexcept {
  for (const char* const name :
       {"hipGetDeviceCount", "hipGetErrorString", "hipMemGetInfo", "hipSetDevice"}) {
    if (FindFunction(library, name) == nullptr) {
      return name;
    }
  }
  return RecordOf(library) == nullptr ? kRecordOfHip5.function : nullptr;
}

void* OpenRuntime(const Candidate& candidate, ReasonText& reason) noexcept {
  void* const library = OpenLibrary(candidate, reason);
  if (library == nullptr) {
    if (candidate.origin == Origin::kLoaded) {
      std::snprintf(reason.data(), reason.size(), "not loaded by this process");
    }
    return nullptr;
  }
  const char* const missing = MissingFunction(library);
  if (missing != nullptr) {
    std::snprintf(reason.data(), reason.size(), "has no function %s", missing);
    CloseLibrary(library);
    return nullptr;
  }
  return library;
}

}  // namespace

void* FindRuntime(BindingReport* report) noexcept {
  for (const Candidate& candidate : Candidates()) {
    ReasonText reason;
    void* const library = OpenRuntime(candidate, reason);
    if (library != nullptr) {
      return library;
    }
    if (report != nullptr) {
      report->attempts[report->attempt_count++] = {candidate, reason};
    }
  }
  return nullptr;
}

}  // namespace kestrel::hip_binding

#pragma once

#include <exception>
#include <new>

#include "c/kestrelcore.h"
#include "c/processor.h"
#include "c/record.h"

// What every call of the C interface has in common: the checks before it, the report after it, and
// the guard that lets no exception out.

namespace kestrel::c {

// Whether a call may report to `result`; a null one receives nothing.
inline bool IsValidResult(const kestrel_result* result) noexcept {
  return result == nullptr || IsRecord(result);
}

// Writes status and message to `result`, which may be null, and returns the status.
kestrel_status Report(kestrel_result* result, kestrel_status status, const char* message) noexcept;

inline kestrel_status ReportSuccess(kestrel_result* result) noexcept {
  return Report(result, KESTREL_OK, "");
}

inline kestrel_status ReportInvalid(kestrel_result* result, const char* message) noexcept {
  return Report(result, KESTREL_INVALID_ARGUMENT, message);
}

// Reports the exception that is being handled.
kestrel_status ReportException(kestrel_result* result) noexcept;

// Returns `KESTREL_OK` if a call may begin, otherwise the status that it fails with, reported.
kestrel_status BeginCall(kestrel_result* result) noexcept;

// Makes the call if it may begin. `call` returns the status that it has reported.
template <typename Call>
kestrel_status Guarded(kestrel_result* result, Call call) noexcept {
  const kestrel_status begun = BeginCall(result);
  if (begun != KESTREL_OK) {
    return begun;
  }
  try {
    return call();
  } catch (...) {
    return ReportException(result);
  }
}

// Makes a call with one output, which holds `failed` until `call` sets it.
template <typename Value, typename Call>
kestrel_status Measure(Value* output, Value failed, kestrel_result* result, Call call) noexcept {
  return Guarded(result, [&] {
    if (output == nullptr) {
      return ReportInvalid(result, "The pointer to the output is null");
    }
    *output = failed;
    return call();
  });
}

}  // namespace kestrel::c

#pragma once

#include <array>
#include <cstddef>

#include "hip_binding/runtime_library.h"

// Which HIP runtime the operations are bound to, and why other candidates were passed over. For
// programs that explain to a person which GPUs were found.

namespace kestrel::hip_binding {

// A candidate that was passed over.
struct Attempt {
  Candidate candidate;
  ReasonText reason;  // the loader's explanation, or what the library lacks
};

struct BindingReport {
  PathText path{};                               // the file of the bound runtime; empty if none
  bool bound_before = false;                     // by an earlier call: then no attempts are known
  std::array<Attempt, kMaxCandidates> attempts;  // in the order in which they were made
  std::size_t attempt_count = 0;
};

// Binds a runtime if none is bound yet, as the first call of an operation does, and reports how
// that went. Calls no function of the runtime. Overwrites what an earlier call wrote to `report`.
void ReportBinding(BindingReport& report) noexcept;

}  // namespace kestrel::hip_binding

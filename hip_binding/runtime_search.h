#pragma once

#include "hip_binding/binding_report.h"

namespace kestrel::hip_binding {

// Opens the first candidate that has every function the operations need; null if there is none.
// Candidates that lack one are closed again. Fills the attempts of `report` if that is not null.
[[nodiscard]] void* FindRuntime(BindingReport* report) noexcept;

}  // namespace kestrel::hip_binding

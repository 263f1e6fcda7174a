#pragma once

#include "hip_binding/runtime_library.h"

namespace kestrel::hip_binding {

// Returns whether loading the candidate would end the process because the file that the loader
// finds first was cut off, by a full disk for instance. Does not search the loader's cache
// (/etc/ld.so.cache) and the run path of the shared library that calls, so it misses files there.
[[nodiscard]] bool IsCutOff(const Candidate& candidate) noexcept;

}  // namespace kestrel::hip_binding

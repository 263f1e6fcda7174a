#pragma once

#include "hip_binding/runtime_library.h"

namespace kestrel::hip_binding {

// Returns whether loading the candidate would end the process, since the file that the loader finds
// first was cut off, by a full disk for instance. The loader's cache (/etc/ld.so.cache) and the
// run path of a shared library that calls are not searched: such a file is not noticed there.
[[nodiscard]] bool IsCutOff(const Candidate& candidate) noexcept;

}  // namespace kestrel::hip_binding

#include "c/processor.h"

namespace kestrel::c {

// The compiler's runtime also looks at OSXSAVE and XCR0, that is, whether the operating system
// saves the wide registers. It asks CPUID once, before any constructor of this library runs.
bool ProcessorIsSupported() noexcept { return static_cast<bool>(__builtin_cpu_supports("avx2")); }

}  // namespace kestrel::c

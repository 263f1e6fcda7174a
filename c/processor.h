#pragma once

namespace kestrel::c {

// Whether the calls that the C interface makes can run here: they are compiled for AVX2, which both
// the processor and the operating system must offer. This check and all that runs before it is
// compiled for any x86-64 processor.
[[nodiscard]] bool ProcessorIsSupported() noexcept;

}  // namespace kestrel::c

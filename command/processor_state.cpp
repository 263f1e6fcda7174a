#include "command/processor_state.h"

#include <cpuid.h>

namespace kestrel::command {

namespace {

// XGETBV, by its bytes: compilers accept its name only with options that allow AVX everywhere.
std::uint64_t ReadXcr0() {
  std::uint32_t low = 0;
  std::uint32_t high = 0;
  __asm__ volatile(".byte 0x0F, 0x01, 0xD0" : "=a"(low), "=d"(high) : "c"(0));
  return std::uint64_t{high} << 32U | low;
}

}  // namespace

// Not platform/'s CPUID: that is compiled for AVX2.
ProcessorState ReadProcessorState() {
  ProcessorState state;
  unsigned eax = 0;
  unsigned ebx = 0;
  unsigned ecx = 0;
  unsigned edx = 0;
  if (__get_cpuid(1, &eax, &ebx, &ecx, &edx) != 0) {
    state.avx = (ecx & bit_AVX) != 0;
    if ((ecx & bit_OSXSAVE) != 0) {
      state.saved_registers = ReadXcr0();
    }
  }
  if (__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) != 0) {
    state.avx2 = (ebx & bit_AVX2) != 0;
  }
  return state;
}

}  // namespace kestrel::command

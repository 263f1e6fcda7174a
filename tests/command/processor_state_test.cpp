#include "command/processor_state.h"

#include <gtest/gtest.h>

#include "command/explanation.h"

namespace kestrel::tests {
namespace {

// The compiler's runtime looks at the same registers.
TEST(ProcessorStateTest, AgreesWithTheCompilersRuntime) {
  const auto state = command::ReadProcessorState();
  EXPECT_EQ(command::CanUseAvx2(state), __builtin_cpu_supports("avx2") != 0);
  const bool saved = (state.saved_registers.value_or(0) & 0x6U) == 0x6;
  EXPECT_EQ(state.avx && saved, __builtin_cpu_supports("avx") != 0);
}

}  // namespace
}  // namespace kestrel::tests

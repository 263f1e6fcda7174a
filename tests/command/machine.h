#pragma once

#include "simulator/control.h"
#include "tests/fakes/platform_fake.h"

namespace kestrel::tests {

inline constexpr std::uint64_t kGiB = std::uint64_t{1} << 30U;

// A machine of 16 GiB with 6 free and 2 to commit beyond them, and two GPUs.
inline simulator::Machine InstallMachine() {
  Platform() = {};
  Platform().cpuid = {{{1, 0}, {0, 0, 0x10000000, 0}}, {{7, 0}, {0, 0x20, 0, 0}}};
  Platform().memory = {16 * kGiB, 6 * kGiB, 2 * kGiB};
  simulator::Machine machine;
  machine.devices = {{"Card", "gfx1102", 0, 8 * kGiB, 7 * kGiB, 8 * kGiB},
                     {"Graphics", "gfx1103", 1, 4 * kGiB, 3 * kGiB, 4 * kGiB}};
  simulator::Install(machine);
  return machine;
}

}  // namespace kestrel::tests

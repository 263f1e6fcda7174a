#include "simulator/machine_from_environment.h"
#include "simulator/release.h"
#include "simulator/start.h"

namespace kestrel::simulator {

// Compiled for each shared library, with the release that it simulates.
Start StartOfRuntime() { return {MachineFromEnvironment(), KESTREL_SIMULATED_RELEASE}; }

}  // namespace kestrel::simulator

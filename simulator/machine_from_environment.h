#pragma once

#include "simulator/control.h"
#include "simulator/environment.h"

namespace kestrel::simulator {

// Reads the machine file that the environment names, and hides the devices that its masks hide.
// Without a file there is no device. If the file cannot be read or parsed, says so on standard
// error and returns a machine on which every call fails.
Machine MachineFromEnvironment();

// As above, over a given environment.
Machine MachineFrom(const Environment& environment);

}  // namespace kestrel::simulator

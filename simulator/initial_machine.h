#pragma once

#include "simulator/control.h"

namespace kestrel::simulator {

// What is simulated until a machine is installed; asked for once, at the first call of any
// operation. Defined twice: the shared library reads a file, what links the core has no device.
Machine InitialMachine();

}  // namespace kestrel::simulator

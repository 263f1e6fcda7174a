#pragma once

#include "simulator/control.h"

namespace kestrel::simulator {

// Returns the machine that is simulated until one is installed. Called once, at the first call of
// any operation. Defined twice: the shared library reads a file, tests in the process start without
// a device.
Machine InitialMachine();

}  // namespace kestrel::simulator

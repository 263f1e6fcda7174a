#pragma once

#include "simulator/control.h"

namespace kestrel::simulator {

struct Start {
  Machine machine;
  int release = 0;  // see release.h
};

// Returns what is simulated until a machine is installed. Called once, at the first call of any
// operation. Defined twice: each shared library reads its environment, tests in the process start
// without a device.
Start StartOfRuntime();

}  // namespace kestrel::simulator

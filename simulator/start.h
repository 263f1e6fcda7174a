#pragma once

#include "simulator/control.h"

namespace kestrel::simulator {

struct Start {
  Machine machine;
  int release = 0;  // see release.h
};

// Returns what is simulated until a machine is installed. Called once, at the first call of any
// operation. Defined twice: in a shared library it reads the environment; in tests that link the
// simulator's objects it returns a machine without devices.
Start StartOfRuntime();

}  // namespace kestrel::simulator

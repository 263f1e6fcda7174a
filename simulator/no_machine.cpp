#include "simulator/initial_machine.h"

namespace kestrel::simulator {

Machine InitialMachine() { return {}; }

}  // namespace kestrel::simulator

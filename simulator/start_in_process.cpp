#include "simulator/release.h"
#include "simulator/start.h"

namespace kestrel::simulator {

Start StartOfRuntime() { return {{}, kHip5}; }

}  // namespace kestrel::simulator

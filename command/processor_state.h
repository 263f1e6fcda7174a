#pragma once

#include "command/observation.h"

namespace kestrel::command {

// Runs on every x86-64 processor.
ProcessorState ReadProcessorState();

}  // namespace kestrel::command

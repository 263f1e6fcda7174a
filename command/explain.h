#pragma once

#include "command/outcome.h"
#include "command/standard_output.h"

namespace kestrel::command {

// Writes each step before the next is taken, since a damaged runtime may end the process.
Outcome RunExplain(const Writer& write);

}  // namespace kestrel::command

#pragma once

#include "command/command_line.h"
#include "command/outcome.h"
#include "command/standard_output.h"

namespace kestrel::command {

// Writes samples until their count is reached, all processes have ended or the user interrupts.
Outcome RunWatch(const WatchRequest& request, const Writer& write);

}  // namespace kestrel::command

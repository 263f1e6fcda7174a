#pragma once

#include "command/command_line.h"
#include "command/outcome.h"

namespace kestrel::command {

Outcome RunFits(const FitsRequest& request);

}  // namespace kestrel::command

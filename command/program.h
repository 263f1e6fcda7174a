#pragma once

#include <string>
#include <vector>

#include "command/outcome.h"

namespace kestrel::command {

// Runs the program with the arguments that follow its name. Only `watch` writes to the terminal by
// itself.
Outcome RunProgram(std::vector<std::string> arguments);

}  // namespace kestrel::command

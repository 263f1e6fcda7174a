#pragma once

#include <string>
#include <vector>

#include "command/outcome.h"
#include "command/standard_output.h"

namespace kestrel::command {

// Runs the program with the arguments that follow its name. Its output has been written when it
// returns.
Outcome RunProgram(std::vector<std::string> arguments, const Writer& write);

}  // namespace kestrel::command

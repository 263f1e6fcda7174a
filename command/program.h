#pragma once

#include <string>
#include <vector>

#include "command/outcome.h"
#include "command/standard_output.h"

namespace kestrel::command {

// The status of a program that could not do what it was asked for.
constexpr int FailureStatus(bool fits) { return fits ? kUndetermined : kFailure; }

// Runs the program with the arguments that follow its name. Its output has been written when it
// returns.
Outcome RunProgram(std::vector<std::string> arguments, const Writer& write);

}  // namespace kestrel::command

#pragma once

#include <string>

#include "command/exit_status.h"

namespace kestrel::command {

// What a subcommand returns.
struct Outcome {
  int status = kSuccess;
  std::string output;  // for standard output
  std::string error;   // one line for standard error, without its newline; empty if there is none
};

}  // namespace kestrel::command

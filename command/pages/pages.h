#pragma once

#include <string>

#include "command/manual.h"

// The man pages and the completions of the shells, made from the tables of command/manual.h.

namespace kestrel::command {

// For man(7).
std::string ManPage(const Manual& manual, const std::string& version);

std::string BashCompletion(const Manual& manual);
std::string ZshCompletion(const Manual& manual);
std::string FishCompletion(const Manual& manual);

}  // namespace kestrel::command

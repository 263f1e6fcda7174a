#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "simulator/control.h"

namespace kestrel::simulator {

// What is wrong with a machine file and where: "machine.toml:3:8: unknown key 'memory'".
class MachineFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws MachineFileError for a file that cannot be read and for what ParseMachine refuses.
Machine ReadMachineFile(const std::string& path);

// The machine that a TOML text describes; the path is for the messages only. Throws
// MachineFileError at the first thing that is not understood: nothing is skipped or guessed.
Machine ParseMachine(std::string_view text, const std::string& path);

}  // namespace kestrel::simulator

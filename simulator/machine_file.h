#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "simulator/control.h"

namespace kestrel::simulator {

// Says what is wrong with a machine file, and where: "machine.toml:3:8: unknown key 'memory'".
class MachineFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads and parses a machine file. Throws MachineFileError if it cannot be read or parsed.
Machine ReadMachineFile(const std::string& path);

// Parses a TOML text; the path is used in messages only. Throws MachineFileError at the first key
// or value that is unknown or out of bounds; it never skips one.
Machine ParseMachine(std::string_view text, const std::string& path);

}  // namespace kestrel::simulator

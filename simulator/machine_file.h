#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "simulator/control.h"

namespace kestrel::simulator {

// Says what is wrong with a machine file, and where: "machine.toml:3:8: unknown key 'memory'".
// Control characters of the file are replaced by their values, "\x1b", since the text goes to a
// terminal.
class MachineFileError : public std::runtime_error {
 public:
  explicit MachineFileError(const std::string& text);
};

// Reads and parses a machine file. Throws MachineFileError if it cannot be read or parsed, if it is
// larger than 1 MiB, and if it is no regular file: a pipe would block the program's HIP calls.
Machine ReadMachineFile(const std::string& path);

// Parses a TOML text; the path is used in messages only. Throws MachineFileError at the first key
// or value that is unknown or out of bounds; it never skips one.
Machine ParseMachine(std::string_view text, const std::string& path);

}  // namespace kestrel::simulator

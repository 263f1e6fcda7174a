#pragma once

#include <string>

#include "simulator/machine_file.h"

namespace kestrel::tests {

// What the simulator says of a machine file that it refuses; empty if it reads the file.
inline std::string ComplaintAboutFile(const std::string& path) {
  try {
    static_cast<void>(simulator::ReadMachineFile(path));
    return "";
  } catch (const simulator::MachineFileError& error) {
    return error.what();
  }
}

}  // namespace kestrel::tests

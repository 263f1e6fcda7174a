#include <cstdlib>
#include <exception>
#include <iostream>

#include "simulator/initial_machine.h"
#include "simulator/machine_file.h"
#include "simulator/operations.h"

namespace kestrel::simulator {

namespace {

// No other cause gives this status, so that a host cannot take a broken file for a broken device.
Machine BrokenMachine() {
  Machine machine;
  for (const std::string_view operation : kOperationsWithStatus) {
    machine.faults.push_back(
        {std::string(operation), std::nullopt, std::nullopt, hipErrorInvalidConfiguration});
  }
  return machine;
}

}  // namespace

Machine InitialMachine() {
  const char* path = std::getenv("KESTREL_SIM_MACHINE");
  if (path == nullptr) {
    return {};
  }
  try {
    return ReadMachineFile(path);
  } catch (const std::exception& error) {
    std::cerr << "Simulated HIP runtime: " << error.what() << std::endl;
    return BrokenMachine();
  }
}

}  // namespace kestrel::simulator

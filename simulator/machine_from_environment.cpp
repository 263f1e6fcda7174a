#include "simulator/machine_from_environment.h"

#include <cstdio>
#include <exception>
#include <string>

#include "simulator/machine_file.h"
#include "simulator/operations.h"
#include "simulator/visible_devices.h"

namespace kestrel::simulator {

namespace {

// Every call fails with a status that no operation returns by itself, so that a host cannot mistake
// a broken file for a broken device.
Machine BrokenMachine() {
  Machine machine;
  for (const Operation& operation : kOperations) {
    if (operation.kind == OperationKind::status) {
      machine.faults.push_back(
          {std::string(operation.name), std::nullopt, std::nullopt, hipErrorInvalidConfiguration});
    }
  }
  return machine;
}

}  // namespace

Machine MachineFrom(const Environment& environment) {
  if (environment.machine_file.value_or("").empty()) {
    return {};
  }
  try {
    return VisiblePart(ReadMachineFile(*environment.machine_file), environment);
  } catch (const std::exception& error) {
    // Not through std::cerr: the host may have enabled its exceptions, and the caller may be C.
    static_cast<void>(std::fprintf(stderr, "Simulated HIP runtime: %s\n", error.what()));
    return BrokenMachine();
  }
}

Machine MachineFromEnvironment() { return MachineFrom(ReadEnvironment()); }

}  // namespace kestrel::simulator

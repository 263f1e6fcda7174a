#include <cstdio>
#include <cstdlib>
#include <exception>

#include "simulator/initial_machine.h"
#include "simulator/machine_file.h"
#include "simulator/operations.h"

namespace kestrel::simulator {

namespace {

// Every call fails with a status that no operation returns by itself, so that a host cannot mistake
// a broken file for a broken device.
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
    // Not through std::cerr: the host may have enabled its exceptions, and the caller may be C.
    static_cast<void>(std::fprintf(stderr, "Simulated HIP runtime: %s\n", error.what()));
    return BrokenMachine();
  }
}

}  // namespace kestrel::simulator

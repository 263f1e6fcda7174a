#include "simulator/environment.h"

#include <cstdlib>

namespace kestrel::simulator {

namespace {

std::optional<std::string> Variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

}  // namespace

// The real runtime of Windows has no ROCr below it, and keeps the system's order of the devices.
Environment ReadEnvironment() {
  return {Variable("KESTREL_SIM_MACHINE"), std::nullopt, Variable("HIP_VISIBLE_DEVICES"), false};
}

}  // namespace kestrel::simulator

#include "simulator/environment.h"

#include <cstdlib>

namespace kestrel::simulator {

namespace {

// A program that runs with more rights than its user must not open a file that the user names.
std::optional<std::string> Variable(const char* name) {
  const char* value = secure_getenv(name);
  return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

}  // namespace

Environment ReadEnvironment() {
  return {Variable("KESTREL_SIM_MACHINE"), Variable("ROCR_VISIBLE_DEVICES"),
          Variable("HIP_VISIBLE_DEVICES"), true};
}

}  // namespace kestrel::simulator

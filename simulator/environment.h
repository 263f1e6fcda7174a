#pragma once

#include <optional>
#include <string>

namespace kestrel::simulator {

// The environment variables that the simulated runtimes read; `nullopt` if not set.
struct Environment {
  std::optional<std::string> machine_file;  // KESTREL_SIM_MACHINE
  std::optional<std::string> rocr_mask;     // ROCR_VISIBLE_DEVICES, which Windows does not have
  std::optional<std::string> hip_mask;      // HIP_VISIBLE_DEVICES
  bool hip_mask_orders_devices = true;      // whether the devices are in the order of hip_mask
};

// Defined once for each system.
Environment ReadEnvironment();

}  // namespace kestrel::simulator

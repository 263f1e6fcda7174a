#include "simulator/visible_devices.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <string>
#include <utility>

namespace kestrel::simulator {

namespace {

std::vector<std::string> Entries(std::string_view mask) {
  std::vector<std::string> entries;
  for (;;) {
    const std::size_t comma = mask.find(',');
    entries.emplace_back(mask.substr(0, comma));
    if (comma == std::string_view::npos) {
      return entries;
    }
    mask.remove_prefix(comma + 1);
  }
}

bool Contains(const std::vector<int>& indices, int index) {
  return std::find(indices.begin(), indices.end(), index) != indices.end();
}

Machine WithDevices(Machine machine, const std::vector<int>& visible) {
  const std::vector<Device> all = std::exchange(machine.devices, {});
  for (const int index : visible) {
    machine.devices.push_back(all[static_cast<std::size_t>(index)]);
  }
  const std::vector<Fault> faults = std::exchange(machine.faults, {});
  for (Fault fault : faults) {
    // A device that exists only in the claimed count has no index to follow.
    if (fault.device && static_cast<std::size_t>(*fault.device) < all.size()) {
      const auto position = std::find(visible.begin(), visible.end(), *fault.device);
      if (position == visible.end()) {
        continue;
      }
      fault.device = static_cast<int>(position - visible.begin());
    }
    machine.faults.push_back(std::move(fault));
  }
  return machine;
}

}  // namespace

std::vector<int> DevicesOfRocrMask(std::string_view mask, int device_count) {
  std::vector<int> visible;
  for (const std::string& entry : Entries(mask)) {
    char* end = nullptr;
    const long index = std::strtol(entry.c_str(), &end, 0);
    const bool is_number = !entry.empty() && *end == '\0';
    if (!is_number || index < 0 || index >= device_count ||
        Contains(visible, static_cast<int>(index))) {
      break;
    }
    visible.push_back(static_cast<int>(index));
  }
  return visible;
}

std::vector<int> DevicesOfHipMask(std::string_view mask, int device_count) {
  if (mask.empty()) {
    std::vector<int> all(static_cast<std::size_t>(device_count));
    std::iota(all.begin(), all.end(), 0);
    return all;
  }
  std::vector<int> visible;
  for (const std::string& entry : Entries(mask)) {
    const long index = std::strtol(entry.c_str(), nullptr, 10);
    if (entry != std::to_string(index) || index < 0 || index >= device_count) {
      break;
    }
    if (!Contains(visible, static_cast<int>(index))) {
      visible.push_back(static_cast<int>(index));
    }
  }
  return visible;
}

Machine VisiblePart(Machine machine, const Environment& environment) {
  const auto device_count = [&] { return static_cast<int>(machine.devices.size()); };
  if (environment.rocr_mask) {
    machine = WithDevices(machine, DevicesOfRocrMask(*environment.rocr_mask, device_count()));
  }
  std::vector<int> visible = DevicesOfHipMask(environment.hip_mask.value_or(""), device_count());
  if (!environment.hip_mask_orders_devices) {
    std::sort(visible.begin(), visible.end());
  }
  return WithDevices(machine, visible);
}

}  // namespace kestrel::simulator

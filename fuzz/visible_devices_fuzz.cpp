// The masks that hide devices, against references, and the machine that they leave. The input's
// first line is the number of devices, the next two are the masks.

#include <algorithm>
#include <set>

#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "simulator/visible_devices.h"

namespace kestrel::fuzz {

namespace {

using simulator::Machine;

// An index as people write it: no sign, no blank, no leading zero.
std::vector<int> ByHipMask(const std::string& mask, int count) {
  std::vector<int> visible;
  for (const std::string& entry : Split(mask, ',')) {
    const auto index = WholeNumber(entry);
    if (!index || *index >= static_cast<unsigned>(count) || std::to_string(*index) != entry) {
      break;
    }
    if (std::count(visible.begin(), visible.end(), static_cast<int>(*index)) == 0) {
      visible.push_back(static_cast<int>(*index));
    }
  }
  for (int index = 0; mask.empty() && index < count; ++index) {
    visible.push_back(index);
  }
  return visible;
}

Machine MachineWith(int count) {
  Machine machine;
  for (int index = 0; index < count; ++index) {
    machine.devices.push_back({std::to_string(index), "", 0, 0, 0, 0});
    machine.faults.push_back({std::to_string(index), index, std::nullopt, hipErrorUnknown});
  }
  machine.claimed_device_count = count + 1;
  machine.faults.push_back({"claimed", count, std::nullopt, hipErrorUnknown});
  return machine;
}

void RequireIndices(const std::vector<int>& visible, int count) {
  Require(std::set<int>(visible.begin(), visible.end()).size() == visible.size(),
          "no device is visible twice");
  for (const int index : visible) {
    Require(index >= 0 && index < count, "a visible device exists");
  }
}

void RequireFaults(const Machine& machine, int count) {
  Require(machine.claimed_device_count == count + 1, "the claimed count stays");
  for (const simulator::Fault& fault : machine.faults) {
    const auto index = static_cast<std::size_t>(fault.device.value_or(-1));
    Require(fault.operation == "claimed" || machine.devices.at(index).name == fault.operation,
            "a fault follows its device");
  }
  Require(machine.faults.size() == machine.devices.size() + 1,
          "the fault of a hidden device is dropped, no other");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Variables of the environment end with NUL, so that none has one.
  const std::string text = TextOf(data, size);
  std::vector<std::string> lines = Split(text.substr(0, text.find('\0')), '\n');
  lines.resize(3);
  const int count = static_cast<int>(WholeNumber(lines[0]).value_or(0) % 20);
  const std::string& rocr_mask = lines[1];
  const std::string& hip_mask = lines[2];

  RequireIndices(simulator::DevicesOfRocrMask(rocr_mask, count), count);
  Require(simulator::DevicesOfHipMask(hip_mask, count) == ByHipMask(hip_mask, count),
          "a mask of HIP shows what the reference shows");
  // Written plainly and without repetition, the two kinds of masks mean the same.
  const std::vector<int> plain = ByHipMask(rocr_mask, count);
  const std::vector<int> by_rocr = simulator::DevicesOfRocrMask(rocr_mask, count);
  Require(rocr_mask.empty() ? by_rocr.empty()
                            : by_rocr.size() >= plain.size() ||
                                  std::equal(by_rocr.begin(), by_rocr.end(), plain.begin()),
          "a mask of ROCr shows what the same mask of HIP shows");

  simulator::Environment environment;
  environment.rocr_mask = rocr_mask;
  environment.hip_mask = hip_mask;
  for (const bool ordered : {true, false}) {
    environment.hip_mask_orders_devices = ordered;
    RequireFaults(VisiblePart(MachineWith(count), environment), count);
  }
  return 0;
}

}  // namespace kestrel::fuzz

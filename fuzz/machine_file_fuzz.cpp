// The machine file of the simulator: a text is refused with its place or gives a machine within the
// bounds, which is the same again after it was written out and read back. The input is the file.

#include <algorithm>

#include "fuzz/made_up_file.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "simulator/machine_file.h"
#include "simulator/operations.h"
#include "simulator/statuses.h"

namespace kestrel::fuzz {

namespace {

using simulator::Device;
using simulator::Fault;
using simulator::Machine;

constexpr std::uint64_t kMostBytes = INT64_MAX;  // the greatest integer of TOML

void RequireBounds(const Machine& machine) {
  for (const Device& device : machine.devices) {
    Require(device.name.size() <= 256 && device.arch.size() <= 256, "names fit their records");
    Require(IsUtf8(device.name) && IsUtf8(device.arch), "names are UTF-8");
    Require(
        std::max({device.total_memory, device.free_memory, device.properties_memory}) <= kMostBytes,
        "amounts of memory are integers of TOML");
  }
  const int known =
      std::max(static_cast<int>(machine.devices.size()), machine.claimed_device_count.value_or(0));
  for (const Fault& fault : machine.faults) {
    Require(simulator::ReturnsStatus(fault.operation), "a fault names an operation");
    Require(!fault.device || (*fault.device >= 0 && *fault.device < known),
            "a fault names a device that is known");
    Require(fault.call.value_or(1) >= 1, "a fault counts calls from 1");
    Require(fault.status != hipSuccess, "a fault is a failure");
  }
}

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char letter : text) {
    const auto byte = static_cast<unsigned char>(letter);
    if (byte < 0x20 || byte == 0x7F) {
      constexpr const char* kDigits = "0123456789abcdef";
      quoted += std::string("\\u00") + kDigits[byte / 16] + kDigits[byte % 16];
    } else {
      quoted +=
          letter == '"' || letter == '\\' ? std::string("\\") + letter : std::string(1, letter);
    }
  }
  return quoted + "\"";
}

// The inverse of the parser.
std::string TomlOf(const Machine& machine) {
  std::string toml = machine.devices.empty() ? "device = []\n" : "";
  if (machine.claimed_device_count) {
    toml += "claimed_device_count = " + std::to_string(*machine.claimed_device_count) + "\n";
  }
  for (const Device& device : machine.devices) {
    toml += "[[device]]\nname = " + Quoted(device.name) + "\narch = " + Quoted(device.arch) +
            "\nintegrated = " + (device.integrated != 0 ? "true" : "false") +
            "\ntotal_memory = " + std::to_string(device.total_memory) +
            "\nfree_memory = " + std::to_string(device.free_memory) +
            "\nproperties_memory = " + std::to_string(device.properties_memory) + "\n";
  }
  for (const Fault& fault : machine.faults) {
    toml += "[[fault]]\noperation = '" + fault.operation + "'\nstatus = '" +
            simulator::StatusName(fault.status) + "'\n";
    toml += fault.device ? "device = " + std::to_string(*fault.device) + "\n" : "";
    toml += fault.call ? "call = " + std::to_string(*fault.call) + "\n" : "";
  }
  return toml;
}

void RequireSame(const Machine& left, const Machine& right) {
  const auto same_device = [](const Device& a, const Device& b) {
    return a.name == b.name && a.arch == b.arch && a.integrated == b.integrated &&
           a.total_memory == b.total_memory && a.free_memory == b.free_memory &&
           a.properties_memory == b.properties_memory;
  };
  const auto same_fault = [](const Fault& a, const Fault& b) {
    // Some statuses have no name of their own and are written as "unknown".
    return a.operation == b.operation && a.device == b.device && a.call == b.call &&
           (a.status == b.status || b.status == hipErrorUnknown);
  };
  Require(left.claimed_device_count == right.claimed_device_count, "the claimed count is the same");
  Require(std::equal(left.devices.begin(), left.devices.end(), right.devices.begin(),
                     right.devices.end(), same_device),
          "the devices are the same after writing and reading");
  Require(std::equal(left.faults.begin(), left.faults.end(), right.faults.begin(),
                     right.faults.end(), same_fault),
          "the faults are the same after writing and reading");
}

void RequireComplaint(const std::string& complaint) {
  Require(complaint.rfind("machine.toml:", 0) == 0, "a complaint names the file first");
  Require(!HasControlCharacter(complaint), "a complaint has no control character");
  std::string place = complaint.substr(complaint.find(':') + 1);
  for (int i = 0; i < 2; ++i) {
    const std::string number = LeadingDigits(place);
    Require(WholeNumber(number).value_or(0) >= 1 && place[number.size()] == ':',
            "a complaint has a line and a column");
    place.erase(0, number.size() + 1);
  }
  Require(place.size() > 1, "a complaint says what is wrong");
}

// Reading a file of that text gives what parsing the text does.
void RequireSameFromFile(const std::string& text) {
  static const MadeUpFile file;
  static const std::string path = MadeUpFile::kDirectory + file.name();
  file.Write(text);
  std::optional<Machine> parsed;
  std::string complaint;
  try {
    parsed = simulator::ParseMachine(text, path);
  } catch (const simulator::MachineFileError& error) {
    complaint = error.what();
  }
  try {
    const Machine machine = simulator::ReadMachineFile(path);
    Require(parsed.has_value(), "a file is refused as its text is");
    RequireSame(machine, *parsed);
  } catch (const simulator::MachineFileError& error) {
    Require(!parsed && complaint == error.what(), "a file is refused as its text is");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostDevices = 64;  // more take long to compare and show no more
  const std::string text = TextOf(data, size);
  try {
    const Machine machine = simulator::ParseMachine(text, "machine.toml");
    RequireBounds(machine);
    if (machine.devices.size() <= kMostDevices) {
      RequireSame(machine, simulator::ParseMachine(TomlOf(machine), "again.toml"));
    }
  } catch (const simulator::MachineFileError& error) {
    RequireComplaint(error.what());
  }
  if (size % 64 == 0) {  // the buffer of a file takes longer than parsing it
    RequireSameFromFile(text);
  }
  return 0;
}

}  // namespace kestrel::fuzz

// The machine file that `kestrel record` writes of a runtime that reports anything: the simulator
// reads it, and it describes what was reported. The input is what the runtime reports.

#include <algorithm>
#include <cstring>
#include <map>

#include "command/record.h"
#include "command/text.h"
#include "fuzz/answering_runtime.h"
#include "fuzz/property.h"
#include "simulator/machine_file.h"

namespace kestrel::fuzz {

namespace {

using simulator::Machine;

template <std::size_t kSize>
std::string TextOf(const char (&field)[kSize]) {
  return command::PrintableText({field, strnlen(field, kSize)}, "?");
}

// The greatest integer of TOML.
std::uint64_t Held(std::uint64_t bytes) { return std::min<std::uint64_t>(bytes, INT64_MAX); }

// The operations of a device that fail, in the order of the calls.
std::vector<std::string> FailingCalls(const ReportedDevice& device) {
  std::vector<std::string> calls;
  if (device.described != hipSuccess) {
    calls.emplace_back("hipGetDeviceProperties");
  }
  if (device.selected != hipSuccess) {
    calls.emplace_back("hipSetDevice");
  } else if (device.queried != hipSuccess) {
    calls.emplace_back("hipMemGetInfo");
  }
  return calls;
}

void RequireDevice(const simulator::Device& recorded, const ReportedDevice& reported) {
  if (reported.described == hipSuccess) {
    Require(recorded.name == TextOf(reported.properties.name) &&
                recorded.arch == TextOf(reported.properties.gcnArchName),
            "the names are those reported, as far as they can be printed");
    Require((recorded.integrated != 0) == (reported.properties.integrated != 0) &&
                recorded.properties_memory == Held(reported.properties.totalGlobalMem),
            "the properties are those reported");
  }
  if (reported.selected == hipSuccess && reported.queried == hipSuccess) {
    Require(recorded.total_memory == Held(reported.total) &&
                recorded.free_memory == Held(reported.free),
            "the memory is what was reported");
  }
}

void RequireRecord(const Machine& recorded, const ReportedMachine& reported) {
  Require(recorded.devices.size() == reported.devices.size(), "every device is recorded");
  std::map<int, std::vector<std::string>> failing;
  for (const simulator::Fault& fault : recorded.faults) {
    failing[fault.device.value_or(-1)].push_back(fault.operation);
  }
  for (std::size_t i = 0; i < reported.devices.size(); ++i) {
    RequireDevice(recorded.devices[i], reported.devices[i]);
    Require(failing[static_cast<int>(i)] == FailingCalls(reported.devices[i]),
            "the calls that failed are the faults");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const ReportedMachine& reported = ReportFrom(input);
  const command::MachineFile file = command::RecordMachine();
  Require(file.left_out == 0, "no device is left out");
  try {
    const Machine recorded = simulator::ParseMachine(file.text, "recorded.toml");
    if (reported.counted == hipSuccess) {
      RequireRecord(recorded, reported);
    } else {
      Require(recorded.devices.empty(), "devices that were not counted are not recorded");
    }
  } catch (const simulator::MachineFileError& error) {
    Require(false, error.what());
  }
  return 0;
}

}  // namespace kestrel::fuzz

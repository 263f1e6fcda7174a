#include "command/record.h"

#include <hip/hip_runtime_api.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <string_view>
#include <system_error>

#include "command/text.h"
#include "command/version.h"

namespace kestrel::command {

namespace {

// A faulty runtime may report any count. The simulated machine reports the same.
constexpr int kMostDevices = 1024;

struct Status {
  int number;
  const char* name;
};

constexpr Status kStatuses[] = {
#define STATUS(number, name, text) {number, #name},
#define UNNAMED_STATUS(number, name) {number, #name},
#include "simulator/statuses.inc"
#undef STATUS
#undef UNNAMED_STATUS
};

std::string NameOf(hipError_t status) {
  const auto* const found =
      std::find_if(std::begin(kStatuses), std::end(kStatuses),
                   [&](const Status& entry) { return entry.number == status; });
  return found != std::end(kStatuses) ? found->name : "hipErrorUnknown";
}

// A string of TOML. Texts have no control characters here.
std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char letter : PrintableText(text, "?")) {
    if (letter == '"' || letter == '\\') {
      quoted += '\\';
    }
    quoted += letter;
  }
  return quoted + "\"";
}

// A faulty runtime may report any amount, and the integers of TOML have a sign.
std::string Amount(std::size_t bytes) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
  return std::to_string(std::min<std::uint64_t>(bytes, kMost));
}

// A runtime may fill the whole array, without a terminating NUL.
template <std::size_t kSize>
std::string_view TextOf(const char (&field)[kSize]) {
  const auto* const end = std::find(std::begin(field), std::end(field), '\0');
  return {field, static_cast<std::size_t>(end - field)};
}

// The machine file as it grows: its devices, and after them its faults.
struct MachineText {
  std::string devices;
  std::string faults;

  void AddFault(const char* operation, hipError_t status, int device) {
    faults += "\n[[fault]]\noperation = \"" + std::string(operation) + "\"\n";
    faults += "device = " + std::to_string(device) + "\nstatus = \"" + NameOf(status) + "\"\n";
  }
};

void RecordDevice(MachineText& text, int device) {
  hipDeviceProp_t properties{};
  const hipError_t described = hipGetDeviceProperties(&properties, device);
  if (described != hipSuccess) {
    properties = {};
    text.AddFault("hipGetDeviceProperties", described, device);
  }
  std::size_t free = 0;
  std::size_t total = 0;
  const hipError_t selected = hipSetDevice(device);
  if (selected != hipSuccess) {
    text.AddFault("hipSetDevice", selected, device);
  } else if (const hipError_t queried = hipMemGetInfo(&free, &total); queried != hipSuccess) {
    free = 0;
    total = 0;
    text.AddFault("hipMemGetInfo", queried, device);
  }
  text.devices += "\n[[device]]\nname = " + Quoted(TextOf(properties.name));
  text.devices += "\narch = " + Quoted(TextOf(properties.gcnArchName));
  text.devices += std::string("\nintegrated = ") + (properties.integrated != 0 ? "true" : "false");
  text.devices += "\ntotal_memory = " + Amount(total);
  text.devices += "\nfree_memory = " + Amount(free);
  text.devices += "\nproperties_memory = " + Amount(properties.totalGlobalMem) + "\n";
}

}  // namespace

MachineFile RecordMachine() {
  const std::string head = std::string("# Recorded by kestrel ") + kVersion + ".\n";
  int count = 0;
  const hipError_t counted = hipGetDeviceCount(&count);
  if (counted != hipSuccess) {
    // The status that a machine without devices has by itself.
    return {head + "\ndevice = []\n" +
            (counted == hipErrorNoDevice
                 ? ""
                 : "\n[[fault]]\noperation = \"hipGetDeviceCount\"\nstatus = \"" + NameOf(counted) +
                       "\"\n")};
  }
  const std::string claim = "\nclaimed_device_count = " + std::to_string(count) + "\n";
  if (count <= 0) {
    return {head + "\ndevice = []" + claim};
  }
  const int recorded = std::min(count, kMostDevices);
  MachineText text;
  for (int device = 0; device < recorded; ++device) {
    RecordDevice(text, device);
  }
  return {head + (recorded < count ? claim : "") + text.devices + text.faults, count - recorded};
}

Outcome RunRecord(const RecordRequest& request) {
  const MachineFile machine = RecordMachine();
  Outcome outcome;
  if (machine.left_out > 0) {
    outcome.status = kFailure;
    outcome.error = "kestrel record: the HIP runtime counts " +
                    std::to_string(kMostDevices + machine.left_out) + " GPUs; only the first " +
                    std::to_string(kMostDevices) + " are recorded";
  }
  if (request.file.empty()) {
    outcome.output = machine.text;
    return outcome;
  }
  errno = 0;
  std::ofstream file(request.file, std::ios::binary);
  file << machine.text;
  file.close();
  if (!file) {
    return {kOutputFailure, "",
            "kestrel record: '" + request.file +
                "' could not be written: " + std::generic_category().message(errno)};
  }
  return outcome;
}

}  // namespace kestrel::command

// The names of machines, processors, extensions, GPUs and statuses. The C interface has tables of
// its own, which must not differ from the names of the C++ library. The input is the number that is
// asked for, and a machine name of uname(2).

#include <fuzzer/FuzzedDataProvider.h>

#include <map>
#include <string>
#include <unordered_set>

#include "c/kestrelcore.h"
#include "fuzz/property.h"
#include "platform/linux/machine_name.h"
#include "system/cpu_info.h"
#include "system/gpu_info.h"

namespace kestrel::fuzz {

namespace {

// The codes are those of winnt.h.
unsigned CodeOf(const std::string& machine) {
  static const std::map<std::string, unsigned> kCodes = {{"x86_64", 9}, {"aarch64", 12}};
  const auto found = kCodes.find(machine);
  if (found != kCodes.end()) {
    return found->second;
  }
  if (machine.rfind("arm", 0) == 0) {
    return 5;
  }
  return machine.size() == 4 && machine.front() == 'i' && machine.substr(2) == "86" ? 0 : 0xFFFF;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const auto number = input.ConsumeIntegral<std::int32_t>();
  const auto bits = static_cast<std::uint32_t>(number);
  Require(system::CpuArchitectureToStr(static_cast<system::CpuArchitecture>(number)) ==
              kestrel_cpu_architecture_name(number),
          "both interfaces name an architecture as one");
  Require(system::GpuIntegrationTypeToStr(static_cast<system::GpuIntegrationType>(number)) ==
              kestrel_gpu_integration_name(number),
          "both interfaces name an integration as one");
  Require(system::GpuSoftwarePlatformToStr(static_cast<system::GpuSoftwarePlatform>(number)) ==
              kestrel_gpu_platform_name(number),
          "both interfaces name a platform as one");

  std::unordered_set<system::CpuInstructionSetExtension> extensions;
  std::string joined;
  for (const int index : {0, 1, 2}) {
    const auto extension = static_cast<system::CpuInstructionSetExtension>(index);
    const std::uint32_t bit = std::uint32_t{1} << static_cast<unsigned>(index);
    Require(system::CpuInstructionSetExtensionToStr(extension) == kestrel_cpu_extension_name(bit),
            "both interfaces name an extension as one");
    if ((bits & bit) != 0) {
      extensions.insert(extension);
      joined += (joined.empty() ? "" : ", ") + system::CpuInstructionSetExtensionToStr(extension);
    }
  }
  Require(system::CpuInstructionSetExtensionsToStr(extensions) == joined,
          "a set names its elements");
  Require(kestrel_cpu_extension_names(bits) == joined, "the bits name what the set names");
  Require(
      std::string(kestrel_status_name(static_cast<kestrel_status>(number))).rfind("KESTREL_", 0) ==
          0,
      "every status has a name");

  const std::string machine = input.ConsumeRemainingBytesAsString();
  Require(platform::ArchitectureOfMachineName(machine) == CodeOf(machine),
          "a machine name has the code of the reference");
  return 0;
}

}  // namespace kestrel::fuzz

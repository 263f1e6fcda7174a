// The survey of the processor over any registers of CPUID, against the positions of the two flags.
// The input is the code of the architecture and the registers of each leaf that is asked for.

#include <fuzzer/FuzzedDataProvider.h>

#include <map>

#include "fuzz/property.h"
#include "platform/platform.h"
#include "system/cpu_survey.h"

namespace kestrel::fuzz {

namespace {

using system::CpuArchitecture;
using system::CpuInstructionSetExtension;

struct Processor {
  std::uint16_t architecture = 0;
  std::map<std::uint32_t, platform::CpuidRegisters> leaves;
};
Processor processor;

// Whether its flags are exactly these.
bool HasFlags(const system::CpuInfo& info, bool avx, bool avx2) {
  const auto& found = info.supportedInstructionSetExtensions;
  return found.count(CpuInstructionSetExtension::AVX) == (avx ? 1 : 0) &&
         found.count(CpuInstructionSetExtension::AVX2) == (avx2 ? 1 : 0) &&
         found.size() == (avx ? 1U : 0U) + (avx2 ? 1U : 0U);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  processor = {};
  processor.architecture = input.ConsumeBool() ? input.PickValueInArray<std::uint16_t>({5, 9, 12})
                                               : input.ConsumeIntegral<std::uint16_t>();
  for (const std::uint32_t leaf : {1U, 7U}) {
    processor.leaves[leaf] = {
        input.ConsumeIntegral<std::uint32_t>(), input.ConsumeIntegral<std::uint32_t>(),
        input.ConsumeIntegral<std::uint32_t>(), input.ConsumeIntegral<std::uint32_t>()};
  }
  const std::map<unsigned, CpuArchitecture> known = {
      {5, CpuArchitecture::ARM64}, {9, CpuArchitecture::x86_64}, {12, CpuArchitecture::ARM64}};
  const auto expected = known.find(processor.architecture);
  const auto [result, info] = system::SurveyCpu();
  if (expected == known.end()) {
    Require(result.code == system::ResultCode::Failure &&
                result.message == "Unsupported processor architecture" &&
                info.architecture == CpuArchitecture::Unknown && HasFlags(info, false, false),
            "of another architecture nothing is reported");
    return 0;
  }
  Require(result.code == system::ResultCode::Success && result.message.empty() &&
              info.architecture == expected->second,
          "the architecture is that of its code");
  // Bit 28 of ECX of leaf 1, and bit 5 of EBX of leaf 7.
  Require(HasFlags(info, processor.leaves[1].ecx >> 28U & 1U, processor.leaves[7].ebx >> 5U & 1U),
          "each extension has its bit");
  return 0;
}

}  // namespace kestrel::fuzz

namespace kestrel::platform {

std::uint16_t ProcessorArchitecture() noexcept { return fuzz::processor.architecture; }

CpuidRegisters Cpuid(std::uint32_t leaf, std::uint32_t subleaf) noexcept {
  fuzz::Require(subleaf == 0, "the first subleaf is asked for");
  return fuzz::processor.leaves.at(leaf);
}

}  // namespace kestrel::platform

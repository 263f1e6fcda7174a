#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "command/observation.h"

namespace kestrel::command {

// One step of the explanation.
struct Section {
  std::string title;
  std::vector<std::string> seen;    // what was seen, and from which source
  std::vector<std::string> advice;  // what to do; empty if all is well
};

// Whether a program that uses AVX2 can run: CPUID shows it, and the operating system saves the
// registers.
bool CanUseAvx2(const ProcessorState& processor);

Section ExplainProcessor(const ProcessorState& processor);
Section ExplainDeviceFiles(const std::vector<DeviceFile>& files, const std::vector<Card>& cards);
Section ExplainMasks(const std::vector<Mask>& masks);
Section ExplainRuntime(const RuntimeState& runtime);
Section ExplainCards(const Observation& observation);
Section ExplainMemory(const Memory& memory);

// For each card, the index of the GPU of HIP that it probably is, or the number of GPUs if HIP does
// not show it. HIP does not say in which slot a GPU is; the memory sizes decide, and where they do
// not, the order.
std::vector<std::size_t> MatchCards(const std::vector<Card>& cards, const std::vector<Gpu>& gpus);

std::string SectionText(const Section& section);

}  // namespace kestrel::command

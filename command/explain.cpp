#include "command/explain.h"

#include <cstdlib>

#include "command/bound_runtime.h"
#include "command/explanation.h"
#include "command/processor_state.h"
#include "command/system_facts.h"

namespace kestrel::command {

namespace {

std::vector<Mask> ReadMasks() {
  std::vector<Mask> masks;
  for (const char* const name : {"ROCR_VISIBLE_DEVICES", "HIP_VISIBLE_DEVICES",
                                 "CUDA_VISIBLE_DEVICES", "GPU_DEVICE_ORDINAL"}) {
    const char* const value = std::getenv(name);
    masks.push_back({name, value != nullptr ? std::optional<std::string>(value) : std::nullopt});
  }
  return masks;
}

}  // namespace

Outcome RunExplain(const Writer& write) {
  Observation seen;
  seen.processor = ReadProcessorState();
  write(SectionText(ExplainProcessor(seen.processor)) + "\n");
  seen.cards = ReadCards("");
  if (HasDeviceFiles()) {
    write(SectionText(ExplainDeviceFiles(ReadDeviceFiles(""), seen.cards)) + "\n");
  }
  write(SectionText(ExplainMasks(ReadMasks())) + "\n");
  write(SectionText(ExplainRuntime(BindRuntime())) + "\n");
  if (CanUseAvx2(seen.processor)) {
    seen.survey = SurveyMachine();
  }
  write(SectionText(ExplainCards(seen)));
  if (seen.survey) {
    write("\n" + SectionText(ExplainMemory(seen.survey->memory)));
  }
  return {};
}

}  // namespace kestrel::command

#pragma once

#include "command/machine_survey.h"

namespace kestrel::tests {

// A survey with everything in it: two GPUs, the free memory of one of them unknown, and a memory
// group that decides.
inline command::MachineSurvey ExampleSurvey() {
  command::MachineSurvey survey;
  survey.architecture = "x86_64";
  survey.extensions = {"AVX", "AVX2"};
  survey.gpus = {{0, "AMD \"Radeon\" \\ RX", "gfx942:sramecc+:xnack-", "Discrete", "ROCm",
                  std::uint64_t{8} << 30U, std::uint64_t{7} << 30U},
                 {1, "AMD Radeon 780M", "gfx1103", "Integrated", "ROCm", std::uint64_t{4} << 30U,
                  std::nullopt}};
  survey.memory.physical_bytes = std::uint64_t{16} << 30U;
  survey.memory.available_bytes = std::uint64_t{3} << 30U;
  survey.memory.committable_bytes = std::uint64_t{1} << 30U;
  survey.memory.limit = KESTREL_LIMIT_GROUP;
  survey.memory.limit_group = "/sys/fs/cgroup/box";
  return survey;
}

// The survey of a machine where each part failed.
inline command::MachineSurvey FailedSurvey() {
  command::MachineSurvey survey;
  survey.processor = {KESTREL_ARCHITECTURE_UNSUPPORTED, "Unsupported processor architecture"};
  survey.architecture = "Unknown";
  survey.gpu_part = {KESTREL_NO_DEVICES, "No hip devices found!"};
  survey.memory.part = {KESTREL_MEMORY_QUERY_FAILED, "Failed to get global memory status."};
  return survey;
}

}  // namespace kestrel::tests

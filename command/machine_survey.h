#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "c/kestrelcore.h"

namespace kestrel::command {

// How the query of a part of the machine ended.
struct Part {
  kestrel_status status = KESTREL_OK;
  std::string message;  // empty on success
};

// All texts are valid UTF-8.
struct Gpu {
  int device = 0;
  std::string name;
  std::string architecture;  // "gfx1100"
  std::string integration;   // "Integrated", "Discrete" or "Unknown"
  std::string platform;      // "ROCm"
  std::uint64_t total_bytes = 0;
  std::optional<std::uint64_t> free_bytes;  // not set if it cannot be read
};

struct Memory {
  Part part;
  std::uint64_t physical_bytes = 0;
  std::uint64_t available_bytes = 0;
  std::uint64_t committable_bytes = 0;  // beyond those
  int limit = KESTREL_LIMIT_UNKNOWN;    // what decides the available bytes
  std::string limit_group;              // the directory of that memory group
};

struct MachineSurvey {
  Part processor;
  std::string architecture;
  std::vector<std::string> extensions;
  Part gpu_part;
  std::vector<Gpu> gpus;
  Memory memory;
};

// A result to pass to a call of the C interface.
kestrel_result NewResult();

Part ToPart(kestrel_status status, const kestrel_result& result);

MachineSurvey SurveyMachine();

// Whether each part could be read. A machine without GPUs is complete.
bool IsComplete(const MachineSurvey& survey);

// Whether the number of GPUs is known. Without a runtime it is 0.
bool AreGpusCounted(const MachineSurvey& survey);

// The name of a status without its prefix, in small letters: "no_devices".
std::string StatusText(kestrel_status status);

// "the machine's free memory", "memory group /sys/fs/cgroup/box" and so on.
std::string LimitText(int limit, const std::string& group);

}  // namespace kestrel::command

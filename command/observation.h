#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "command/machine_survey.h"

// What `kestrel explain` looks at. Plain values, so that its judgement is tested with machines that
// nobody has here.

namespace kestrel::command {

struct ProcessorState {
  bool avx = false;  // as CPUID shows them
  bool avx2 = false;
  // XCR0, which names the registers that the operating system saves; not set if it has not enabled
  // XGETBV.
  std::optional<std::uint64_t> saved_registers;
};

// A HIP runtime that was passed over.
struct PassedRuntime {
  std::string name;  // a file name, or a path
  bool loaded_only;  // looked for among the libraries of the process alone
  std::string reason;
};

struct RuntimeState {
  std::string path;  // of the runtime that is used; empty if there is none
  std::vector<PassedRuntime> passed;
};

enum class FileState : std::uint8_t { kUsable, kMissing, kDenied };

// A file through which the runtime reaches the GPUs. Linux only.
struct DeviceFile {
  std::string path;
  FileState state = FileState::kMissing;
  std::string error;           // why it cannot be opened, if it is denied
  std::string group;           // its group, by name or else by number
  bool group_may_use = false;  // whether the file's mode lets its group read and write
  bool in_group = false;       // whether this process is in that group
};

struct Mask {
  std::string name;                  // "HIP_VISIBLE_DEVICES"
  std::optional<std::string> value;  // not set if the variable is not
};

// A graphics card of AMD that the kernel shows, with or without HIP. Figures in bytes, as the
// kernel reports them.
struct Card {
  std::string name;    // "card0", or on Windows the driver's description
  std::string slot;    // "0000:03:00.0"; empty on Windows
  std::string driver;  // "amdgpu"; empty if none is bound
  std::optional<std::uint64_t> vram_total;
  std::optional<std::uint64_t> vram_used;
  std::optional<std::uint64_t> gtt_total;
  std::optional<std::uint64_t> gtt_used;
  std::string vram_source = "mem_info_vram_*";  // the system's name of the VRAM's figures
};

struct Observation {
  ProcessorState processor;
  std::vector<Card> cards;
  // The GPUs as HIP shows them and the memory; not set where the processor lacks AVX2.
  std::optional<MachineSurvey> survey;
};

}  // namespace kestrel::command

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrel::command {

struct ProcessSample {
  int pid = 0;
  bool running = true;  // false once it cannot be measured any more
  float percent = 0;    // of all processors
  std::optional<std::uint64_t> resident_bytes;
  bool was_measured = false;  // in this sample or in an earlier one
};

struct VramSample {
  int device = 0;
  std::uint64_t total_bytes = 0;
  std::optional<std::uint64_t> free_bytes;
};

// What `kestrel watch` shows of one moment.
struct Sample {
  std::chrono::milliseconds time{0};  // since 1970
  std::uint64_t physical_bytes = 0;
  std::optional<std::uint64_t> available_bytes;  // RAM
  std::vector<VramSample> vram;
  std::vector<ProcessSample> processes;
};

// Measures the memory and the resident bytes of each running process. Does not change their shares.
void MeasureMemory(Sample& sample);

// "12.5 %"
std::string PercentText(float percent);

// Of a process that is not running: "ended". One that was never measured need not have ended: the
// caller may not be allowed to query it, or the number may be that of a thread.
std::string StateText(const ProcessSample& process);

// One line, with its newline.
std::string SampleText(const Sample& sample);
std::string SampleJson(const Sample& sample);

}  // namespace kestrel::command

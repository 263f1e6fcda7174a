#include "command/watch_sample.h"

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "c/kestrelcore.h"
#include "command/amounts.h"
#include "command/machine_survey.h"

namespace kestrel::command {

namespace {

using Json = nlohmann::ordered_json;

std::string Figure(const std::optional<std::uint64_t>& bytes) {
  return bytes ? SizeText(*bytes) : "unknown";
}

Json ToJson(const std::optional<std::uint64_t>& bytes) { return bytes ? Json(*bytes) : Json(); }

}  // namespace

void MeasureMemory(Sample& sample) {
  kestrel_result result = NewResult();
  std::uint64_t bytes = 0;
  const auto figure = [&](kestrel_status status) {
    return status == KESTREL_OK ? std::optional(bytes) : std::nullopt;
  };
  sample.available_bytes = figure(kestrel_available_ram(&bytes, &result));
  for (VramSample& vram : sample.vram) {
    vram.free_bytes = figure(kestrel_gpu_memory(vram.device, &bytes, nullptr, &result));
  }
  for (ProcessSample& process : sample.processes) {
    process.resident_bytes.reset();
    if (process.running) {
      process.resident_bytes = figure(kestrel_process_used_ram(process.pid, &bytes, &result));
    }
  }
}

std::string PercentText(float percent) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.1f %%", static_cast<double>(percent));
  return text.data();
}

std::string StateText(const ProcessSample& process) {
  return process.was_measured ? "ended" : "cannot be measured";
}

std::string SampleText(const Sample& sample) {
  std::string text = "RAM " + Figure(sample.available_bytes) + " available";
  for (const VramSample& vram : sample.vram) {
    text += "; VRAM " + std::to_string(vram.device) + " " + Figure(vram.free_bytes) + " free";
  }
  for (const ProcessSample& process : sample.processes) {
    text += "; PID " + std::to_string(process.pid) + " ";
    text += process.running ? PercentText(process.percent) + " " + Figure(process.resident_bytes)
                            : StateText(process);
  }
  return text + "\n";
}

std::string SampleJson(const Sample& sample) {
  Json json = {{"time_ms", sample.time.count()},
               {"memory_available_bytes", ToJson(sample.available_bytes)},
               {"gpus", Json::array()},
               {"processes", Json::array()}};
  for (const VramSample& vram : sample.vram) {
    json["gpus"].push_back(
        {{"device", vram.device}, {"memory_free_bytes", ToJson(vram.free_bytes)}});
  }
  for (const ProcessSample& process : sample.processes) {
    json["processes"].push_back({{"pid", process.pid},
                                 {"running", process.running},
                                 {"cpu_percent", process.running ? Json(process.percent) : Json()},
                                 {"resident_bytes", ToJson(process.resident_bytes)}});
  }
  return json.dump() + "\n";
}

}  // namespace kestrel::command

#include <utility>
#include <vector>

#include "command/survey_report.h"
#include "command/version.h"

// The text format of Prometheus: https://prometheus.io/docs/instrumenting/exposition_formats/

namespace kestrel::command {

namespace {

using Labels = std::vector<std::pair<const char*, std::string>>;

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char letter : text) {
    if (letter == '\\' || letter == '"') {
      escaped += '\\';
    }
    escaped += letter;
  }
  return escaped;
}

// One gauge with its samples. A gauge without samples is not written.
class Gauge {
 public:
  Gauge(std::string name, std::string help) : name_(std::move(name)), help_(std::move(help)) {}

  void Add(const Labels& labels, std::uint64_t value) {
    std::string list;
    for (const auto& [label, text] : labels) {
      list += (list.empty() ? "{" : ",") + std::string(label) + "=\"" + Escaped(text) + "\"";
    }
    samples_ += name_ + list + (list.empty() ? " " : "} ") + std::to_string(value) + "\n";
  }

  [[nodiscard]] std::string Text() const {
    return samples_.empty()
               ? ""
               : "# HELP " + name_ + " " + help_ + "\n# TYPE " + name_ + " gauge\n" + samples_;
  }

 private:
  std::string name_;
  std::string help_;
  std::string samples_;
};

std::string SingleGauge(const char* name, const char* help, std::uint64_t value) {
  Gauge gauge(name, help);
  gauge.Add({}, value);
  return gauge.Text();
}

std::string SuccessMetric(const MachineSurvey& survey) {
  Gauge success("kestrel_survey_success", "Whether this part of the machine could be read.");
  const auto add = [&](const char* name, const Part& part) {
    success.Add({{"part", name}}, part.status == KESTREL_OK ? 1 : 0);
  };
  add("processor", survey.processor);
  add("gpus", survey.gpu_part);
  add("memory", survey.memory.part);
  return success.Text();
}

std::string ProcessorMetrics(const MachineSurvey& survey) {
  Gauge info("kestrel_processor_info", "The processor's architecture.");
  if (survey.processor.status == KESTREL_OK) {
    info.Add({{"architecture", survey.architecture}}, 1);
  }
  Gauge extensions("kestrel_processor_extension_info",
                   "A vector instruction-set extension of the processor.");
  for (const std::string& extension : survey.extensions) {
    extensions.Add({{"extension", extension}}, 1);
  }
  return info.Text() + extensions.Text();
}

std::string GpuMetrics(const MachineSurvey& survey) {
  Gauge info("kestrel_gpu_info", "A GPU that the HIP runtime sees.");
  Gauge total("kestrel_gpu_memory_bytes", "Memory of the GPU.");
  Gauge free("kestrel_gpu_memory_free_bytes", "Memory of the GPU that is free.");
  for (const Gpu& gpu : survey.gpus) {
    const Labels device = {{"device", std::to_string(gpu.device)}};
    Labels labels = device;
    labels.insert(labels.end(), {{"name", gpu.name},
                                 {"architecture", gpu.architecture},
                                 {"integration", gpu.integration},
                                 {"platform", gpu.platform}});
    info.Add(labels, 1);
    total.Add(device, gpu.total_bytes);
    if (gpu.free_bytes) {
      free.Add(device, *gpu.free_bytes);
    }
  }
  Gauge devices("kestrel_gpu_devices", "Number of GPUs that the HIP runtime sees.");
  if (AreGpusCounted(survey)) {
    devices.Add({}, survey.gpus.size());
  }
  return devices.Text() + info.Text() + total.Text() + free.Text();
}

std::string MemoryMetrics(const Memory& memory) {
  if (memory.part.status != KESTREL_OK) {
    return "";
  }
  Gauge limit("kestrel_memory_limit_info", "What decides how much RAM is available.");
  limit.Add({{"limit", LimitText(memory.limit, memory.limit_group)}}, 1);
  return SingleGauge("kestrel_memory_physical_bytes", "Physical RAM of the machine.",
                     memory.physical_bytes) +
         SingleGauge("kestrel_memory_available_bytes",
                     "RAM that a process here could get without swapping.",
                     memory.available_bytes) +
         SingleGauge("kestrel_memory_committable_bytes",
                     "Memory that a process here could get beyond the available RAM.",
                     memory.committable_bytes) +
         limit.Text();
}

}  // namespace

std::string SurveyMetrics(const MachineSurvey& survey) {
  Gauge build("kestrel_build_info", "The version of kestrel that wrote these metrics.");
  build.Add({{"version", kVersion}}, 1);
  return build.Text() + SuccessMetric(survey) + ProcessorMetrics(survey) + GpuMetrics(survey) +
         MemoryMetrics(survey.memory);
}

}  // namespace kestrel::command

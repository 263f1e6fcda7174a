#include "command/machine_survey.h"

#include <cstddef>
#include <string_view>

#include "command/text.h"

namespace kestrel::command {

namespace {

// More than one machine has; where there are more, the call says how many.
constexpr std::size_t kUsualGpus = 16;

Gpu ToGpu(const kestrel_gpu& record) {
  Gpu gpu;
  gpu.device = record.device_id;
  gpu.name = PrintableText(record.name);
  gpu.architecture = PrintableText(record.architecture_name);
  gpu.integration = kestrel_gpu_integration_name(record.integration_type);
  gpu.platform = kestrel_gpu_platform_name(record.detection_platform);
  gpu.total_bytes = record.total_memory;
  kestrel_result result = NewResult();
  std::uint64_t free = 0;
  if (kestrel_gpu_memory(record.device_id, &free, nullptr, &result) == KESTREL_OK) {
    gpu.free_bytes = free;
  }
  return gpu;
}

void SurveyGpus(MachineSurvey& survey) {
  std::vector<kestrel_gpu> records(kUsualGpus);
  kestrel_status status = KESTREL_CAPACITY_TOO_SMALL;
  kestrel_result result = NewResult();
  std::size_t count = records.size();
  while (status == KESTREL_CAPACITY_TOO_SMALL) {
    records.resize(count);
    records.front().struct_size = sizeof(kestrel_gpu);
    status = kestrel_survey_gpus(records.data(), records.size(), &count, &result);
  }
  survey.gpu_part = ToPart(status, result);
  for (std::size_t i = 0; i < count; ++i) {
    survey.gpus.push_back(ToGpu(records[i]));
  }
}

void SurveyProcessor(MachineSurvey& survey) {
  kestrel_cpu cpu{};
  cpu.struct_size = sizeof(cpu);
  kestrel_result result = NewResult();
  const kestrel_status status = kestrel_survey_cpu(&cpu, &result);
  survey.processor = ToPart(status, result);
  survey.architecture = kestrel_cpu_architecture_name(cpu.architecture);
  for (const std::uint32_t bit :
       {KESTREL_CPU_EXTENSION_AVX, KESTREL_CPU_EXTENSION_AVX2, KESTREL_CPU_EXTENSION_ADVSIMD}) {
    if ((cpu.extensions & bit) != 0) {
      survey.extensions.emplace_back(kestrel_cpu_extension_name(bit));
    }
  }
}

Memory SurveyMemory() {
  Memory memory;
  kestrel_result result = NewResult();
  kestrel_status status = kestrel_machine_physical_ram(&memory.physical_bytes, &result);
  kestrel_forecast forecast{};
  forecast.struct_size = sizeof(forecast);
  if (status == KESTREL_OK) {
    status = kestrel_memory_forecast(0, &forecast, &result);
  }
  memory.part = ToPart(status, result);
  memory.available_bytes = forecast.available;
  memory.committable_bytes = forecast.committable;
  memory.limit = forecast.limit;
  memory.limit_group = PrintableText(forecast.limit_group);
  return memory;
}

}  // namespace

kestrel_result NewResult() {
  kestrel_result result{};
  result.struct_size = sizeof(result);
  return result;
}

Part ToPart(kestrel_status status, const kestrel_result& result) {
  return {status, status == KESTREL_OK ? "" : PrintableText(result.message)};
}

MachineSurvey SurveyMachine() {
  MachineSurvey survey;
  SurveyGpus(survey);
  SurveyProcessor(survey);
  survey.memory = SurveyMemory();
  return survey;
}

bool IsComplete(const MachineSurvey& survey) {
  return survey.processor.status == KESTREL_OK && survey.memory.part.status == KESTREL_OK &&
         AreGpusCounted(survey);
}

bool AreGpusCounted(const MachineSurvey& survey) {
  return survey.gpu_part.status == KESTREL_OK || survey.gpu_part.status == KESTREL_NO_DEVICES;
}

std::string StatusText(kestrel_status status) {
  constexpr std::string_view kPrefix = "KESTREL_";
  std::string text = std::string(kestrel_status_name(status)).substr(kPrefix.size());
  for (char& letter : text) {
    letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  }
  return text;
}

std::string LimitText(int limit, const std::string& group) {
  switch (limit) {
    case KESTREL_LIMIT_MACHINE:
      return "the machine's free memory";
    case KESTREL_LIMIT_GROUP:
      return "memory group " + PrintableText(group);
    case KESTREL_LIMIT_COMMIT:
      return "the commit limit";
    default:
      return "unknown";
  }
}

}  // namespace kestrel::command

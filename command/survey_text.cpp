#include "command/amounts.h"
#include "command/survey_report.h"

namespace kestrel::command {

namespace {

void AddLine(std::string& text, const std::string& label, const std::string& value) {
  constexpr std::size_t kColumn = 16;
  std::string line = "  " + label;
  line.resize(2 + kColumn, ' ');
  text += line + value + "\n";
}

std::string ProcessorText(const MachineSurvey& survey) {
  std::string text = "Processor\n";
  if (survey.processor.status != KESTREL_OK) {
    return text + "  " + survey.processor.message + "\n";
  }
  std::string extensions;
  for (const std::string& extension : survey.extensions) {
    extensions += (extensions.empty() ? "" : ", ") + extension;
  }
  AddLine(text, "architecture", survey.architecture);
  AddLine(text, "extensions", extensions.empty() ? "none" : extensions);
  return text;
}

std::string GpuText(const MachineSurvey& survey) {
  std::string text = "GPUs\n";
  if (survey.gpu_part.status != KESTREL_OK) {
    return text + "  " + survey.gpu_part.message + "\n  'kestrel explain' looks for the reason\n";
  }
  for (const Gpu& gpu : survey.gpus) {
    AddLine(text, "device " + std::to_string(gpu.device), gpu.name);
    AddLine(text, "", gpu.architecture + ", " + gpu.integration + ", " + gpu.platform);
    const std::string free = gpu.free_bytes ? SizeText(*gpu.free_bytes) : "unknown";
    AddLine(text, "", SizeText(gpu.total_bytes) + " VRAM, " + free + " free");
  }
  return survey.gpus.empty() ? text + "  none\n" : text;
}

std::string MemoryText(const Memory& memory) {
  std::string text = "Memory\n";
  if (memory.part.status != KESTREL_OK) {
    return text + "  " + memory.part.message + "\n";
  }
  AddLine(text, "physical", SizeText(memory.physical_bytes));
  AddLine(text, "available", SizeText(memory.available_bytes));
  AddLine(text, "committable", SizeText(memory.committable_bytes) + " beyond that");
  AddLine(text, "limited by", LimitText(memory.limit, memory.limit_group));
  return text;
}

}  // namespace

std::string SurveyText(const MachineSurvey& survey) {
  return ProcessorText(survey) + "\n" + GpuText(survey) + "\n" + MemoryText(survey.memory);
}

std::string SurveyReport(const MachineSurvey& survey, SurveyFormat format) {
  switch (format) {
    case SurveyFormat::kJson:
      return SurveyJson(survey);
    case SurveyFormat::kPrometheus:
      return SurveyMetrics(survey);
    case SurveyFormat::kLabels:
      return SurveyLabels(survey);
    case SurveyFormat::kText:
      break;
  }
  return SurveyText(survey);
}

}  // namespace kestrel::command

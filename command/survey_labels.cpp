#include <algorithm>
#include <string_view>

#include "command/survey_report.h"

// Lines of key=value, as the feature files of node feature discovery have them. Only what does not
// change while the machine runs is a label: schedulers compare them.

namespace kestrel::command {

namespace {

bool IsAlphanumeric(char letter) {
  return (letter >= '0' && letter <= '9') || (letter >= 'A' && letter <= 'Z') ||
         (letter >= 'a' && letter <= 'z');
}

// The value of a label has at most 63 characters, letters and digits at both ends, and only
// them, '-', '_' and '.' between
// (https://kubernetes.io/docs/concepts/overview/working-with-objects/labels/).
std::string LabelValue(std::string_view text) {
  constexpr std::size_t kLongest = 63;
  std::string value;
  for (const char letter : text) {
    if (IsAlphanumeric(letter) || letter == '.' || letter == '_') {
      value += letter;
    } else if (!value.empty() && value.back() != '-') {
      value += '-';
    }
  }
  value.erase(value.begin(), std::find_if(value.begin(), value.end(), IsAlphanumeric));
  value.resize(std::min(value.size(), kLongest));
  while (!value.empty() && !IsAlphanumeric(value.back())) {
    value.pop_back();
  }
  return value;
}

std::string Label(const std::string& key, std::string_view value) {
  return key + "=" + LabelValue(value) + "\n";
}

std::string Mebibytes(std::uint64_t bytes) { return std::to_string(bytes >> 20); }

// "gfx942:sramecc+:xnack-" names the architecture and what is switched on in it.
std::string_view WithoutFeatures(std::string_view architecture) {
  return architecture.substr(0, architecture.find(':'));
}

}  // namespace

std::string SurveyLabels(const MachineSurvey& survey) {
  std::string labels;
  if (survey.processor.status == KESTREL_OK) {
    labels += Label("kestrel-cpu.architecture", survey.architecture);
  }
  for (const std::string& extension : survey.extensions) {
    labels += Label("kestrel-cpu." + extension, "true");
  }
  if (AreGpusCounted(survey)) {
    labels += Label("kestrel-gpu.count", std::to_string(survey.gpus.size()));
  }
  for (const Gpu& gpu : survey.gpus) {
    const std::string key = "kestrel-gpu." + std::to_string(gpu.device) + ".";
    labels += Label(key + "name", gpu.name);
    labels += Label(key + "architecture", WithoutFeatures(gpu.architecture));
    labels += Label(key + "integration", gpu.integration);
    labels += Label(key + "memory-mib", Mebibytes(gpu.total_bytes));
  }
  if (survey.memory.part.status == KESTREL_OK) {
    labels += Label("kestrel-memory.physical-mib", Mebibytes(survey.memory.physical_bytes));
  }
  return labels;
}

}  // namespace kestrel::command

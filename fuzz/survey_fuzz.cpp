// `kestrel survey` over a library that answers anything: its texts can be printed, JSON is read
// back as what was surveyed, the metrics too after their escapes are undone, and every label is one
// that schedulers accept. The input is the answers, call by call.

#include <fuzzer/FuzzedDataProvider.h>

#include <map>
#include <nlohmann/json.hpp>

#include "command/survey_report.h"
#include "fuzz/answering_library.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"

namespace kestrel::fuzz {

namespace {

using command::Gpu;
using command::MachineSurvey;

// What the library may answer and the reports may print.
void RequirePrintable(const MachineSurvey& survey) {
  std::vector<std::string> texts = {survey.processor.message, survey.gpu_part.message,
                                    survey.memory.part.message, survey.memory.limit_group};
  for (const Gpu& gpu : survey.gpus) {
    texts.push_back(gpu.name);
    texts.push_back(gpu.architecture);
  }
  for (const std::string& text : texts) {
    Require(IsUtf8(text) && !HasControlCharacter(text), "every text can be printed");
  }
}

void RequireJson(const MachineSurvey& survey) {
  const auto json = nlohmann::json::parse(command::SurveyJson(survey), nullptr, false);
  Require(json.is_object(), "JSON can be read back");
  const auto& devices = json["gpus"]["devices"];
  Require(devices.size() == survey.gpus.size(), "JSON has every GPU");
  for (std::size_t i = 0; i < survey.gpus.size(); ++i) {
    const Gpu& gpu = survey.gpus[i];
    Require(devices[i]["name"] == gpu.name && devices[i]["architecture"] == gpu.architecture &&
                devices[i]["device"] == gpu.device && devices[i]["memory_bytes"] == gpu.total_bytes,
            "JSON has the names and figures of a GPU");
    Require(devices[i]["memory_free_bytes"].is_null() == !gpu.free_bytes,
            "an unknown figure is null in JSON");
  }
  Require(json["processor"]["message"] == survey.processor.message &&
              json["gpus"]["message"] == survey.gpu_part.message &&
              json["memory"]["message"] == survey.memory.part.message,
          "JSON has the messages");
  const auto& group = json["memory"]["limit_group"];
  Require(group.is_null() || group == survey.memory.limit_group, "JSON has the memory group");
}

// A sample of the text format of Prometheus.
struct Metric {
  std::string name;
  std::map<std::string, std::string> labels;
  std::string value;
};

// Reads a label's value up to its closing quote, undoing the escapes.
std::string TakeQuoted(const std::string& line, std::size_t& position) {
  std::string value;
  Require(line.at(position++) == '"', "a label's value begins with a quote");
  while (line.at(position) != '"') {
    if (line[position] == '\\') {
      const char escaped = line.at(++position);
      Require(escaped == '\\' || escaped == '"' || escaped == 'n', "an escape is a known one");
      value += escaped == 'n' ? '\n' : escaped;
    } else {
      value += line[position];
    }
    ++position;
  }
  ++position;
  return value;
}

Metric MetricOf(const std::string& line) {
  Metric metric;
  std::size_t position = line.find_first_of("{ ");
  Require(position != std::string::npos, "a sample has a value");
  metric.name = line.substr(0, position);
  while (line.at(position) == '{' || line[position] == ',') {
    const std::size_t equals = line.find('=', ++position);
    Require(equals != std::string::npos, "a label has a value");
    const std::string label = line.substr(position, equals - position);
    position = equals + 1;
    metric.labels[label] = TakeQuoted(line, position);
  }
  position += line.at(position) == '}' ? 1U : 0U;
  Require(line.at(position) == ' ', "a blank precedes the value");
  metric.value = line.substr(position + 1);
  Require(WholeNumber(metric.value).has_value(), "a value is a number");
  return metric;
}

void RequireMetrics(const MachineSurvey& survey) {
  const std::string text = command::SurveyMetrics(survey);
  Require(!text.empty() && text.back() == '\n', "metrics end with a newline");
  std::size_t gpus = 0;
  for (const std::string& line : CompleteLines(text)) {
    if (line.rfind("# HELP ", 0) == 0 || line.rfind("# TYPE ", 0) == 0) {
      continue;
    }
    Metric metric = MetricOf(line);
    if (metric.name == "kestrel_gpu_info") {
      Require(gpus < survey.gpus.size(), "metrics have no more GPUs than there are");
      const Gpu& gpu = survey.gpus[gpus++];
      Require(metric.labels["name"] == gpu.name &&
                  metric.labels["architecture"] == gpu.architecture &&
                  metric.labels["device"] == std::to_string(gpu.device),
              "the labels of a GPU are its names");
    } else if (metric.name == "kestrel_memory_limit_info") {
      Require(metric.labels["limit"] ==
                  command::LimitText(survey.memory.limit, survey.memory.limit_group),
              "the label of the limit is its text");
    }
  }
  Require(gpus == survey.gpus.size(), "metrics have every GPU");
}

// "kestrel-gpu.0.name=AMD-Radeon": letters, digits and some signs, of which none is at an end of
// the value.
void RequireLabels(const MachineSurvey& survey) {
  const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
  for (const std::string& line : CompleteLines(command::SurveyLabels(survey))) {
    const std::vector<std::string> parts = Split(line, '=');
    Require(parts.size() == 2 && parts[0].rfind("kestrel-", 0) == 0, "a label has key and value");
    Require(line.find_first_not_of(letters + "-_.=") == std::string::npos,
            "a label has no other character");
    const std::string& value = parts[1];
    Require(value.size() <= 63, "a value is not longer than schedulers accept");
    Require(value.empty() || (letters.find(value.front()) != std::string::npos &&
                              letters.find(value.back()) != std::string::npos),
            "a value begins and ends with a letter or a digit");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  AnswerFrom(input);
  const MachineSurvey survey = command::SurveyMachine();
  RequirePrintable(survey);
  RequireJson(survey);
  RequireMetrics(survey);
  RequireLabels(survey);
  const std::string text = command::SurveyText(survey);
  Require(IsUtf8(text), "the text is UTF-8");
  for (const std::string& line : Split(text, '\n')) {
    Require(!HasControlCharacter(line), "the text has no control character");
  }
  return 0;
}

}  // namespace kestrel::fuzz

#include <nlohmann/json.hpp>

#include "command/survey_report.h"
#include "command/version.h"

namespace kestrel::command {

namespace {

// Keeps the keys in the order in which they are written here, which is the one to read them in.
using Json = nlohmann::ordered_json;

Json ToJson(const Part& part) {
  return {{"status", StatusText(part.status)}, {"message", part.message}};
}

// Figures that could not be read are null, so that no 0 is taken for one.
template <typename Value>
Json Known(const Part& part, const Value& value) {
  return part.status == KESTREL_OK ? Json(value) : Json();
}

Json ToJson(const Gpu& gpu) {
  return {{"device", gpu.device},
          {"name", gpu.name},
          {"architecture", gpu.architecture},
          {"integration", gpu.integration},
          {"platform", gpu.platform},
          {"memory_bytes", gpu.total_bytes},
          {"memory_free_bytes", gpu.free_bytes ? Json(*gpu.free_bytes) : Json()}};
}

const char* LimitName(int limit) {
  switch (limit) {
    case KESTREL_LIMIT_MACHINE:
      return "machine";
    case KESTREL_LIMIT_GROUP:
      return "group";
    case KESTREL_LIMIT_COMMIT:
      return "commit";
    default:
      return "unknown";
  }
}

Json ToJson(const Memory& memory) {
  Json json = ToJson(memory.part);
  json["physical_bytes"] = Known(memory.part, memory.physical_bytes);
  json["available_bytes"] = Known(memory.part, memory.available_bytes);
  json["committable_bytes"] = Known(memory.part, memory.committable_bytes);
  json["limit"] = LimitName(memory.limit);
  json["limit_group"] = memory.limit == KESTREL_LIMIT_GROUP ? Json(memory.limit_group) : Json();
  return json;
}

}  // namespace

std::string SurveyJson(const MachineSurvey& survey) {
  Json processor = ToJson(survey.processor);
  processor["architecture"] = Known(survey.processor, survey.architecture);
  processor["extensions"] = survey.extensions;
  Json gpus = ToJson(survey.gpu_part);
  gpus["devices"] = Json::array();
  for (const Gpu& gpu : survey.gpus) {
    gpus["devices"].push_back(ToJson(gpu));
  }
  const Json json = {{"schema", kSurveySchema},
                     {"version", kVersion},
                     {"processor", processor},
                     {"gpus", gpus},
                     {"memory", ToJson(survey.memory)}};
  return json.dump(2) + "\n";
}

}  // namespace kestrel::command

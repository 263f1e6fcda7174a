#pragma once

#include <string>

#include "command/command_line.h"
#include "command/machine_survey.h"

namespace kestrel::command {

// The number in JSON's `schema`. It changes when a reader of the former must change.
inline constexpr int kSurveySchema = 1;

std::string SurveyReport(const MachineSurvey& survey, SurveyFormat format);

// The formats, each complete with its last newline.
std::string SurveyText(const MachineSurvey& survey);
std::string SurveyJson(const MachineSurvey& survey);
std::string SurveyMetrics(const MachineSurvey& survey);
std::string SurveyLabels(const MachineSurvey& survey);

}  // namespace kestrel::command

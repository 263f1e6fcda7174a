#include "command/survey.h"

#include "command/machine_survey.h"
#include "command/survey_report.h"

namespace kestrel::command {

Outcome RunSurvey(const SurveyRequest& request) {
  const MachineSurvey survey = SurveyMachine();
  Outcome outcome;
  outcome.output = SurveyReport(survey, request.format);
  if (!IsComplete(survey)) {
    outcome.status = kFailure;
    outcome.error =
        "kestrel survey: a part of the machine could not be read; the report says which";
  }
  return outcome;
}

}  // namespace kestrel::command

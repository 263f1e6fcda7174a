#pragma once

#include "command/command_line.h"
#include "command/outcome.h"

namespace kestrel::command {

Outcome RunSurvey(const SurveyRequest& request);

}  // namespace kestrel::command

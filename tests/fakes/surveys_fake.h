#pragma once

#include <string>
#include <utility>
#include <vector>

#include "system/hardware_survey.h"

namespace kestrel::tests {

// The outcomes of SurveyGpus and SurveyCpu in a program that links surveys_fake.cpp in their place,
// including outcomes that the real ones never have, and the order of the calls.
struct SurveysFake {
  std::pair<system::Result, std::vector<system::GpuInfo>> gpu_survey;
  std::pair<system::Result, system::CpuInfo> cpu_survey;
  std::vector<std::string> calls;
};

SurveysFake& Surveys();

}  // namespace kestrel::tests

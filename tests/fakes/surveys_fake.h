#pragma once

#include <string>
#include <utility>
#include <vector>

#include "system/hardware_survey.h"

namespace kestrel::tests {

// What SurveyGpus and SurveyCpu return in a program that links surveys_fake.cpp in their place,
// also what the real ones never would; and the order in which they were called.
struct SurveysFake {
  std::pair<system::Result, std::vector<system::GpuInfo>> gpu_survey;
  std::pair<system::Result, system::CpuInfo> cpu_survey;
  std::vector<std::string> calls;
};

SurveysFake& Surveys();

}  // namespace kestrel::tests

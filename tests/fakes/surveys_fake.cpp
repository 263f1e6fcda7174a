#include "tests/fakes/surveys_fake.h"

namespace kestrel::fakes {

SurveysFake& Surveys() {
  static SurveysFake fake;
  return fake;
}

}  // namespace kestrel::fakes

namespace kestrel::system {

std::pair<Result, std::vector<GpuInfo>> SurveyGpus() {
  fakes::Surveys().calls.emplace_back("SurveyGpus");
  return fakes::Surveys().gpu_survey;
}

std::pair<Result, CpuInfo> SurveyCpu() {
  fakes::Surveys().calls.emplace_back("SurveyCpu");
  return fakes::Surveys().cpu_survey;
}

}  // namespace kestrel::system

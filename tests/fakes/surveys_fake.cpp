#include "tests/fakes/surveys_fake.h"

namespace kestrel::tests {

SurveysFake& Surveys() {
  static SurveysFake fake;
  return fake;
}

}  // namespace kestrel::tests

namespace kestrel::system {

std::pair<Result, std::vector<GpuInfo>> SurveyGpus() {
  tests::Surveys().calls.emplace_back("SurveyGpus");
  return tests::Surveys().gpu_survey;
}

std::pair<Result, CpuInfo> SurveyCpu() {
  tests::Surveys().calls.emplace_back("SurveyCpu");
  return tests::Surveys().cpu_survey;
}

}  // namespace kestrel::system

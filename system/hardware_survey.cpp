#include "system/hardware_survey.h"

namespace kestrel::system {

namespace {

// The surveys return no data with a failure themselves. The second guard is part of the contract of
// SurveyHardware: a host that does not check the status never gets devices of a failed survey.
template <typename Data>
std::pair<Result, Data> WithoutDataOnFailure(std::pair<Result, Data> survey) {
  if (survey.first.code != ResultCode::Success) {
    survey.second = Data{};
  }
  return survey;
}

}  // namespace

HardwareSurveyResult::HardwareSurveyResult() = default;
HardwareSurveyResult::HardwareSurveyResult(const HardwareSurveyResult& other) = default;
HardwareSurveyResult::HardwareSurveyResult(HardwareSurveyResult&& other) noexcept = default;
HardwareSurveyResult& HardwareSurveyResult::operator=(const HardwareSurveyResult& other) = default;
HardwareSurveyResult::~HardwareSurveyResult() = default;

// Not defaulted: a vector that is move-assigned to itself loses its elements.
HardwareSurveyResult& HardwareSurveyResult::operator=(HardwareSurveyResult&& other) noexcept {
  if (this != &other) {
    gpuSurvey = std::move(other.gpuSurvey);
    cpuSurvey = std::move(other.cpuSurvey);
  }
  return *this;
}

HardwareSurveyResult SurveyHardware() {
  HardwareSurveyResult survey;
  survey.gpuSurvey = WithoutDataOnFailure(SurveyGpus());
  survey.cpuSurvey = WithoutDataOnFailure(SurveyCpu());
  return survey;
}

}  // namespace kestrel::system

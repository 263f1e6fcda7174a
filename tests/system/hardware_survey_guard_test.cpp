// SurveyHardware over surveys that break their contract: they return data with a failure.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/fakes/surveys_fake.h"

namespace kestrel::tests {
namespace {

using system::CpuArchitecture;
using system::CpuInfo;
using system::CpuInstructionSetExtension;
using system::GpuInfo;
using system::HardwareSurveyResult;
using system::ResultCode;
using system::SurveyHardware;

// Both surveys return data, whatever their codes.
void SetSurveys(ResultCode gpu_code, ResultCode cpu_code) {
  CpuInfo cpu;
  cpu.architecture = CpuArchitecture::ARM64;
  cpu.supportedInstructionSetExtensions = {CpuInstructionSetExtension::AdvSIMD};
  Surveys() = {
      {{gpu_code, "gpu text"}, std::vector<GpuInfo>(2)}, {{cpu_code, "cpu text"}, cpu}, {}};
}

TEST(HardwareSurveyGuardTest, DataOfFailedSurveyIsDropped) {
  for (const ResultCode code : {ResultCode::Unknown, ResultCode::Failure, ResultCode::NoDevices,
                                ResultCode::DeviceQueryFailed, static_cast<ResultCode>(99)}) {
    SetSurveys(code, code);
    const HardwareSurveyResult survey = SurveyHardware();
    EXPECT_EQ(survey.gpuSurvey.first.code, code);
    EXPECT_EQ(survey.gpuSurvey.first.message, "gpu text");
    EXPECT_TRUE(survey.gpuSurvey.second.empty());
    EXPECT_EQ(survey.cpuSurvey.first.code, code);
    EXPECT_EQ(survey.cpuSurvey.first.message, "cpu text");
    EXPECT_EQ(survey.cpuSurvey.second.architecture, CpuArchitecture::Unknown);
    EXPECT_TRUE(survey.cpuSurvey.second.supportedInstructionSetExtensions.empty());
  }
}

TEST(HardwareSurveyGuardTest, DataOfSuccessfulSurveyIsKept) {
  SetSurveys(ResultCode::Success, ResultCode::Success);
  const HardwareSurveyResult survey = SurveyHardware();
  EXPECT_EQ(survey.gpuSurvey.second.size(), 2U);
  EXPECT_EQ(survey.cpuSurvey.second.architecture, CpuArchitecture::ARM64);
  EXPECT_EQ(survey.cpuSurvey.second.supportedInstructionSetExtensions.size(), 1U);
}

TEST(HardwareSurveyGuardTest, CpuIsSurveyedAfterTheGpusEvenIfTheyFail) {
  for (const ResultCode code : {ResultCode::Success, ResultCode::DeviceQueryFailed}) {
    SetSurveys(code, ResultCode::Success);
    static_cast<void>(SurveyHardware());
    EXPECT_EQ(Surveys().calls, (std::vector<std::string>{"SurveyGpus", "SurveyCpu"}));
  }
}

}  // namespace
}  // namespace kestrel::tests

// PrintHardwareSurvey over survey outcomes that the library never returns.

#include <gtest/gtest.h>

#include <string>

#include "harness/routines.h"
#include "tests/fakes/output_recorder.h"
#include "tests/fakes/surveys_fake.h"

namespace kestrel::tests {
namespace {

using system::GpuInfo;
using system::GpuIntegrationType;
using system::GpuSoftwarePlatform;
using system::ResultCode;

class HardwareReportTest : public testing::Test {
 protected:
  HardwareReportTest() {
    Surveys() = {};
    Surveys().gpu_survey.first.code = ResultCode::Success;
    Surveys().cpu_survey.first = {ResultCode::Failure, "why"};
  }
};

constexpr const char* kBeforeTheGpu =
    "Failed to retrieve CPU information: why\n"
    "Gpu Information:\n"
    "========================\n"
    "  Gpu Name: \n"
    "  Device ID: -1\n"
    "  Total Memory: 0 Bytes\n"
    "  Dedicated Memory: 0 Bytes\n"
    "  Integration Type: Unknown\n"
    "  Detection Platform: Unknown\n"
    "  Detection Platform Version: \n";

TEST_F(HardwareReportTest, GpuWithoutOtherInfoHasNoSuchLine) {
  Surveys().gpu_survey.second = {GpuInfo{}};
  EXPECT_EQ(OutputOf(PrintHardwareSurvey), std::string(kBeforeTheGpu) +
                                               "  ------------------------\n"
                                               "  ------------------------\n");
}

TEST_F(HardwareReportTest, OneEntryOfOtherInfoIsIndentedByFour) {
  GpuInfo gpu;
  gpu.otherInfo = {{"key", "value"}};
  Surveys().gpu_survey.second = {gpu};
  EXPECT_EQ(OutputOf(PrintHardwareSurvey), std::string(kBeforeTheGpu) +
                                               "  Other Info:\n"
                                               "    key: value\n"
                                               "  ------------------------\n"
                                               "  ------------------------\n");
}

TEST_F(HardwareReportTest, OtherInfoIsPrintedInTheOrderOfTheMap) {
  GpuInfo gpu;
  gpu.otherInfo = {{"a", "1"}, {"b", "2"}, {"c", "3"}};
  Surveys().gpu_survey.second = {gpu};
  std::string entries;
  for (const auto& [key, value] : gpu.otherInfo) {
    entries.append("    ").append(key).append(": ").append(value).append("\n");
  }
  EXPECT_NE(OutputOf(PrintHardwareSurvey).find("  Other Info:\n" + entries + "  -----"),
            std::string::npos);
}

TEST_F(HardwareReportTest, EveryFieldIsPrinted) {
  GpuInfo gpu;
  gpu.name = "card";
  gpu.deviceId = 12;
  gpu.totalMemory = 1536;
  gpu.dedicatedMemory = 3145728;
  gpu.integrationType = GpuIntegrationType::Integrated;
  gpu.detectionPlatform = GpuSoftwarePlatform::OpenCl;
  gpu.detectionPlatformVersion = "3.0";
  Surveys().gpu_survey.second = {gpu};
  EXPECT_EQ(OutputOf(PrintHardwareSurvey),
            "Failed to retrieve CPU information: why\n"
            "Gpu Information:\n"
            "========================\n"
            "  Gpu Name: card\n"
            "  Device ID: 12\n"
            "  Total Memory: 1.50 KiB\n"
            "  Dedicated Memory: 3.00 MiB\n"
            "  Integration Type: Integrated\n"
            "  Detection Platform: OpenCl\n"
            "  Detection Platform Version: 3.0\n"
            "  ------------------------\n"
            "  ------------------------\n");
}

TEST_F(HardwareReportTest, AnyCodeButSuccessPrintsTheMessageOnly) {
  for (const auto code : {ResultCode::Unknown, ResultCode::NoDevices, static_cast<ResultCode>(9)}) {
    Surveys().gpu_survey = {{code, "no gpu"}, {}};
    Surveys().cpu_survey = {{code, "no cpu"}, {}};
    EXPECT_EQ(OutputOf(PrintHardwareSurvey),
              "Failed to retrieve CPU information: no cpu\n"
              "Failed to retrieve GPU information: no gpu\n");
  }
}

}  // namespace
}  // namespace kestrel::tests

#include <gtest/gtest.h>

#include "command/survey_report.h"
#include "tests/command/example_survey.h"

namespace kestrel::tests {
namespace {

TEST(SurveyTextTest, EachPartIsABlock) {
  EXPECT_EQ(command::SurveyText(ExampleSurvey()),
            "Processor\n"
            "  architecture    x86_64\n"
            "  extensions      AVX, AVX2\n"
            "\n"
            "GPUs\n"
            "  device 0        AMD \"Radeon\" \\ RX\n"
            "                  gfx942:sramecc+:xnack-, Discrete, ROCm\n"
            "                  8.00 GiB VRAM, 7.00 GiB free\n"
            "  device 1        AMD Radeon 780M\n"
            "                  gfx1103, Integrated, ROCm\n"
            "                  4.00 GiB VRAM, unknown free\n"
            "\n"
            "Memory\n"
            "  physical        16.00 GiB\n"
            "  available       3.00 GiB\n"
            "  committable     1.00 GiB beyond that\n"
            "  limited by      memory group /sys/fs/cgroup/box\n");
}

TEST(SurveyTextTest, FailedPartsGiveTheirReason) {
  EXPECT_EQ(command::SurveyText(FailedSurvey()),
            "Processor\n"
            "  Unsupported processor architecture\n"
            "\n"
            "GPUs\n"
            "  No hip devices found!\n"
            "  'kestrel explain' looks for the reason\n"
            "\n"
            "Memory\n"
            "  Failed to get global memory status.\n");
}

TEST(SurveyTextTest, MachineWithoutGpusOrExtensionsSaysNone) {
  command::MachineSurvey survey = ExampleSurvey();
  survey.gpus.clear();
  survey.extensions.clear();
  const std::string text = command::SurveyText(survey);
  EXPECT_NE(text.find("extensions      none\n"), std::string::npos);
  EXPECT_NE(text.find("GPUs\n  none\n"), std::string::npos);
}

TEST(SurveyReportTest, EachFormatHasItsOwnText) {
  const auto survey = ExampleSurvey();
  using command::SurveyFormat;
  EXPECT_EQ(command::SurveyReport(survey, SurveyFormat::kText), command::SurveyText(survey));
  EXPECT_EQ(command::SurveyReport(survey, SurveyFormat::kJson), command::SurveyJson(survey));
  EXPECT_EQ(command::SurveyReport(survey, SurveyFormat::kPrometheus),
            command::SurveyMetrics(survey));
  EXPECT_EQ(command::SurveyReport(survey, SurveyFormat::kLabels), command::SurveyLabels(survey));
}

}  // namespace
}  // namespace kestrel::tests

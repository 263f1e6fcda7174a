#include <gtest/gtest.h>

#include "command/survey_report.h"
#include "tests/command/example_survey.h"

namespace kestrel::tests {
namespace {

TEST(SurveyLabelsTest, ValuesAreWhatKubernetesAllows) {
  EXPECT_EQ(command::SurveyLabels(ExampleSurvey()),
            "kestrel-cpu.architecture=x86_64\n"
            "kestrel-cpu.AVX=true\n"
            "kestrel-cpu.AVX2=true\n"
            "kestrel-gpu.count=2\n"
            "kestrel-gpu.0.name=AMD-Radeon-RX\n"
            "kestrel-gpu.0.architecture=gfx942\n"
            "kestrel-gpu.0.integration=Discrete\n"
            "kestrel-gpu.0.memory-mib=8192\n"
            "kestrel-gpu.1.name=AMD-Radeon-780M\n"
            "kestrel-gpu.1.architecture=gfx1103\n"
            "kestrel-gpu.1.integration=Integrated\n"
            "kestrel-gpu.1.memory-mib=4096\n"
            "kestrel-memory.physical-mib=16384\n");
}

TEST(SurveyLabelsTest, LongValueIsCutAndEndsWithALetterOrDigit) {
  command::MachineSurvey survey = ExampleSurvey();
  survey.gpus.resize(1);
  survey.gpus[0].name = "_(" + std::string(62, 'x') + " y";
  EXPECT_NE(command::SurveyLabels(survey).find("name=" + std::string(62, 'x') + "\n"),
            std::string::npos);
  survey.gpus[0].name = std::string(64, 'x');
  EXPECT_NE(command::SurveyLabels(survey).find("name=" + std::string(63, 'x') + "\n"),
            std::string::npos);
  survey.gpus[0].name = "(!)";
  EXPECT_NE(command::SurveyLabels(survey).find("name=\n"), std::string::npos);
}

TEST(SurveyLabelsTest, OtherCharactersThanLettersDigitsDotsAndUnderscoresBecomeOneDash) {
  command::MachineSurvey survey = ExampleSurvey();
  survey.gpus.resize(1);
  survey.gpus[0].name = "-.a/0:9@A[Z`a{z_1.2 \xC3\xA9--3._-";
  EXPECT_NE(command::SurveyLabels(survey).find("name=a-0-9-A-Z-a-z_1.2-3\n"), std::string::npos)
      << command::SurveyLabels(survey);
}

TEST(SurveyLabelsTest, FailedPartsHaveNoLabels) {
  EXPECT_EQ(command::SurveyLabels(FailedSurvey()), "kestrel-gpu.count=0\n");
}

TEST(SurveyLabelsTest, NumberOfGpusIsMissingIfTheyCouldNotBeRead) {
  command::MachineSurvey survey = FailedSurvey();
  survey.gpu_part = {KESTREL_DEVICE_QUERY_FAILED, "Invalid hip device at device id'1'"};
  EXPECT_EQ(command::SurveyLabels(survey), "");
}

}  // namespace
}  // namespace kestrel::tests

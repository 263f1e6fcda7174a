#include <gtest/gtest.h>

#include "command/survey_report.h"
#include "tests/command/example_survey.h"

namespace kestrel::tests {
namespace {

bool Has(const std::string& metrics, const std::string& line) {
  return ("\n" + metrics).find("\n" + line + "\n") != std::string::npos;
}

TEST(SurveyMetricsTest, FiguresAreGaugesInBytes) {
  const std::string metrics = command::SurveyMetrics(ExampleSurvey());
  EXPECT_TRUE(Has(metrics, "# TYPE kestrel_memory_available_bytes gauge")) << metrics;
  EXPECT_TRUE(Has(metrics, "kestrel_memory_available_bytes 3221225472")) << metrics;
  EXPECT_TRUE(Has(metrics, "kestrel_gpu_memory_bytes{device=\"1\"} 4294967296")) << metrics;
  EXPECT_TRUE(Has(metrics, "kestrel_gpu_devices 2")) << metrics;
}

TEST(SurveyMetricsTest, TextsAreEscapedLabels) {
  EXPECT_TRUE(Has(command::SurveyMetrics(ExampleSurvey()),
                  "kestrel_gpu_info{device=\"0\",name=\"AMD \\\"Radeon\\\" \\\\ "
                  "RX\",architecture=\"gfx942:sramecc+:xnack-\",integration=\"Discrete\","
                  "platform=\"ROCm\"} 1"));
}

TEST(SurveyMetricsTest, FigureThatCouldNotBeReadHasNoSample) {
  const std::string metrics = command::SurveyMetrics(ExampleSurvey());
  EXPECT_NE(metrics.find("kestrel_gpu_memory_free_bytes{device=\"0\"}"), std::string::npos);
  EXPECT_EQ(metrics.find("kestrel_gpu_memory_free_bytes{device=\"1\"}"), std::string::npos);
}

TEST(SurveyMetricsTest, FailedPartsAreMarkedAndHaveNoFigures) {
  const std::string metrics = command::SurveyMetrics(FailedSurvey());
  for (const char* part : {"processor", "gpus", "memory"}) {
    EXPECT_TRUE(Has(metrics, std::string("kestrel_survey_success{part=\"") + part + "\"} 0"));
  }
  EXPECT_EQ(metrics.find("kestrel_memory_"), std::string::npos) << metrics;
  EXPECT_EQ(metrics.find("kestrel_processor_"), std::string::npos) << metrics;
  EXPECT_TRUE(Has(metrics, "kestrel_gpu_devices 0")) << metrics;
}

TEST(SurveyMetricsTest, NumberOfGpusIsMissingIfTheyCouldNotBeRead) {
  command::MachineSurvey survey = FailedSurvey();
  survey.gpu_part = {KESTREL_DEVICE_QUERY_FAILED, "Invalid hip device at device id'1'"};
  const std::string metrics = command::SurveyMetrics(survey);
  EXPECT_EQ(metrics.find("kestrel_gpu_"), std::string::npos) << metrics;
}

}  // namespace
}  // namespace kestrel::tests

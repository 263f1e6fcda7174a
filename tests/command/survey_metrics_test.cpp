#include <gtest/gtest.h>

#include <string>

#include "command/survey_report.h"
#include "tests/command/example_survey.h"

namespace kestrel::tests {
namespace {

bool Has(const std::string& metrics, const std::string& line) {
  return ("\n" + metrics).find("\n" + line + "\n") != std::string::npos;
}

TEST(SurveyMetricsTest, EachGaugeHasItsHelpItsTypeAndItsSamples) {
  EXPECT_EQ(command::SurveyMetrics(ExampleSurvey()),
            R"(# HELP kestrel_build_info The version of kestrel that wrote these metrics.
# TYPE kestrel_build_info gauge
kestrel_build_info{version=")" +
                std::string(kestrel_version_text()) +
                R"("} 1
# HELP kestrel_survey_success Whether this part of the machine could be read.
# TYPE kestrel_survey_success gauge
kestrel_survey_success{part="processor"} 1
kestrel_survey_success{part="gpus"} 1
kestrel_survey_success{part="memory"} 1
# HELP kestrel_processor_info The processor's architecture.
# TYPE kestrel_processor_info gauge
kestrel_processor_info{architecture="x86_64"} 1
# HELP kestrel_processor_extension_info A vector instruction-set extension of the processor.
# TYPE kestrel_processor_extension_info gauge
kestrel_processor_extension_info{extension="AVX"} 1
kestrel_processor_extension_info{extension="AVX2"} 1
# HELP kestrel_gpu_devices Number of GPUs that the HIP runtime sees.
# TYPE kestrel_gpu_devices gauge
kestrel_gpu_devices 2
# HELP kestrel_gpu_info A GPU that the HIP runtime sees.
# TYPE kestrel_gpu_info gauge
kestrel_gpu_info{device="0",name="AMD \"Radeon\" \\ RX",architecture="gfx942:sramecc+:xnack-",integration="Discrete",platform="ROCm"} 1
kestrel_gpu_info{device="1",name="AMD Radeon 780M",architecture="gfx1103",integration="Integrated",platform="ROCm"} 1
# HELP kestrel_gpu_memory_bytes Memory of the GPU.
# TYPE kestrel_gpu_memory_bytes gauge
kestrel_gpu_memory_bytes{device="0"} 8589934592
kestrel_gpu_memory_bytes{device="1"} 4294967296
# HELP kestrel_gpu_memory_free_bytes Memory of the GPU that is free.
# TYPE kestrel_gpu_memory_free_bytes gauge
kestrel_gpu_memory_free_bytes{device="0"} 7516192768
# HELP kestrel_memory_physical_bytes Physical RAM of the machine.
# TYPE kestrel_memory_physical_bytes gauge
kestrel_memory_physical_bytes 17179869184
# HELP kestrel_memory_available_bytes RAM that a process here could get without swapping.
# TYPE kestrel_memory_available_bytes gauge
kestrel_memory_available_bytes 3221225472
# HELP kestrel_memory_committable_bytes Memory that a process here could get beyond the available RAM.
# TYPE kestrel_memory_committable_bytes gauge
kestrel_memory_committable_bytes 1073741824
# HELP kestrel_memory_limit_info What decides how much RAM is available.
# TYPE kestrel_memory_limit_info gauge
kestrel_memory_limit_info{limit="memory group /sys/fs/cgroup/box"} 1
)");
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
  const std::string after_success = "kestrel_survey_success{part=\"memory\"} 0\n";
  EXPECT_EQ(metrics.substr(metrics.find(after_success)),
            after_success +
                "# HELP kestrel_gpu_devices Number of GPUs that the HIP runtime sees.\n"
                "# TYPE kestrel_gpu_devices gauge\n"
                "kestrel_gpu_devices 0\n");
}

TEST(SurveyMetricsTest, NumberOfGpusIsMissingIfTheyCouldNotBeRead) {
  command::MachineSurvey survey = FailedSurvey();
  survey.gpu_part = {KESTREL_DEVICE_QUERY_FAILED, "Invalid hip device at device id'1'"};
  const std::string metrics = command::SurveyMetrics(survey);
  EXPECT_EQ(metrics.find("kestrel_gpu_"), std::string::npos) << metrics;
}

}  // namespace
}  // namespace kestrel::tests

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "command/survey_report.h"
#include "tests/command/example_survey.h"

namespace kestrel::tests {
namespace {

using nlohmann::json;

TEST(SurveyJsonTest, BytesAreIntegers) {
  const json survey = json::parse(command::SurveyJson(ExampleSurvey()));
  EXPECT_EQ(survey["schema"], 1);
  EXPECT_TRUE(survey["memory"]["physical_bytes"].is_number_unsigned());
  EXPECT_EQ(survey["memory"]["physical_bytes"], std::uint64_t{16} << 30U);
  EXPECT_EQ(survey["memory"]["limit"], "group");
  EXPECT_EQ(survey["memory"]["limit_group"], "/sys/fs/cgroup/box");
  EXPECT_EQ(survey["gpus"]["devices"][0]["memory_free_bytes"], std::uint64_t{7} << 30U);
  EXPECT_EQ(survey["gpus"]["devices"][0]["name"], "AMD \"Radeon\" \\ RX");
  EXPECT_EQ(survey["processor"]["extensions"], json::parse(R"(["AVX", "AVX2"])"));
}

TEST(SurveyJsonTest, WhatCouldNotBeReadIsNull) {
  const json example = json::parse(command::SurveyJson(ExampleSurvey()));
  EXPECT_TRUE(example["gpus"]["devices"][1]["memory_free_bytes"].is_null());
  const json failed = json::parse(command::SurveyJson(FailedSurvey()));
  EXPECT_EQ(failed["processor"]["status"], "architecture_unsupported");
  EXPECT_TRUE(failed["processor"]["architecture"].is_null());
  EXPECT_EQ(failed["gpus"]["status"], "no_devices");
  EXPECT_EQ(failed["gpus"]["message"], "No hip devices found!");
  EXPECT_TRUE(failed["gpus"]["devices"].empty());
  EXPECT_TRUE(failed["memory"]["available_bytes"].is_null());
  EXPECT_TRUE(failed["memory"]["limit_group"].is_null());
}

}  // namespace
}  // namespace kestrel::tests

#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <string>

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

TEST(SurveyJsonTest, KeysAreInTheOrderToReadThemIn) {
  EXPECT_EQ(command::SurveyJson(ExampleSurvey()),
            R"({
  "schema": 1,
  "version": ")" +
                std::string(kestrel_version_text()) +
                R"(",
  "processor": {
    "status": "ok",
    "message": "",
    "architecture": "x86_64",
    "extensions": [
      "AVX",
      "AVX2"
    ]
  },
  "gpus": {
    "status": "ok",
    "message": "",
    "devices": [
      {
        "device": 0,
        "name": "AMD \"Radeon\" \\ RX",
        "architecture": "gfx942:sramecc+:xnack-",
        "integration": "Discrete",
        "platform": "ROCm",
        "memory_bytes": 8589934592,
        "memory_free_bytes": 7516192768
      },
      {
        "device": 1,
        "name": "AMD Radeon 780M",
        "architecture": "gfx1103",
        "integration": "Integrated",
        "platform": "ROCm",
        "memory_bytes": 4294967296,
        "memory_free_bytes": null
      }
    ]
  },
  "memory": {
    "status": "ok",
    "message": "",
    "physical_bytes": 17179869184,
    "available_bytes": 3221225472,
    "committable_bytes": 1073741824,
    "limit": "group",
    "limit_group": "/sys/fs/cgroup/box"
  }
}
)");
}

TEST(SurveyJsonTest, EachLimitHasAName) {
  auto survey = ExampleSurvey();
  const std::map<int, const char*> names = {{KESTREL_LIMIT_MACHINE, "machine"},
                                            {KESTREL_LIMIT_GROUP, "group"},
                                            {KESTREL_LIMIT_COMMIT, "commit"},
                                            {KESTREL_LIMIT_UNKNOWN, "unknown"}};
  for (const auto& [limit, name] : names) {
    survey.memory.limit = limit;
    const json memory = json::parse(command::SurveyJson(survey))["memory"];
    EXPECT_EQ(memory["limit"], name);
    EXPECT_EQ(memory["limit_group"].is_null(), limit != KESTREL_LIMIT_GROUP);
  }
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
  EXPECT_TRUE(failed["memory"]["physical_bytes"].is_null());
  EXPECT_TRUE(failed["memory"]["available_bytes"].is_null());
  EXPECT_TRUE(failed["memory"]["committable_bytes"].is_null());
  EXPECT_TRUE(failed["memory"]["limit_group"].is_null());
}

}  // namespace
}  // namespace kestrel::tests

// SurveyGpus over a runtime that throws, or that writes no figures.

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "system/gpu_survey.h"
#include "tests/fakes/hip_fake.h"

namespace kestrel::tests {
namespace {

using system::SurveyGpus;

// The survey has no status for an exception, so the host gets it.
TEST(GpuSurveyGuardTest, ExceptionOfAnyCallPassesThrough) {
  for (const char* operation :
       {"hipGetDeviceCount", "hipGetDeviceProperties", "hipSetDevice", "hipMemGetInfo"}) {
    Hip() = {};
    Hip().device_count = 1;
    Hip().actions[operation] = [] { throw std::bad_alloc(); };
    EXPECT_THROW(static_cast<void>(SurveyGpus()), std::bad_alloc) << operation;
    Hip().actions[operation] = [] { throw std::runtime_error("runtime"); };
    EXPECT_THROW(static_cast<void>(SurveyGpus()), std::runtime_error) << operation;
  }
}

TEST(GpuSurveyGuardTest, FiguresThatTheRuntimeDoesNotWriteAreZero) {
  Hip() = {};
  Hip().device_count = 2;
  Hip().total_memory = 40;
  Hip().silent = {"hipMemGetInfo"};
  const auto [result, gpus] = SurveyGpus();
  EXPECT_EQ(result.code, system::ResultCode::Success);
  ASSERT_EQ(gpus.size(), 2U);
  EXPECT_EQ(gpus[1].totalMemory, 0U);
  Hip().silent = {"hipGetDeviceCount"};
  EXPECT_TRUE(SurveyGpus().second.empty());
}

}  // namespace
}  // namespace kestrel::tests

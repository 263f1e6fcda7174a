// SurveyGpus over a runtime that throws.

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "system/gpu_survey.h"
#include "tests/fakes/hip_fake.h"

namespace kestrel::tests {
namespace {

using system::SurveyGpus;

// The host sees what the runtime throws: the survey has no status for it.
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

}  // namespace
}  // namespace kestrel::tests

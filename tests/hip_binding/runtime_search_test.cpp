#include "hip_binding/runtime_search.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/fakes/runtime_library_fake.h"

namespace kestrel::tests {
namespace {

using hip_binding::BindingReport;
using hip_binding::FindRuntime;
using hip_binding::Origin;

int AnyFunction() { return 0; }

RuntimeFake WithFunctions(const std::vector<std::string>& names) {
  RuntimeFake runtime;
  for (const std::string& name : names) {
    runtime[name] = FunctionOf(AnyFunction);
  }
  return runtime;
}

RuntimeFake CompleteRuntime() {
  return WithFunctions({"hipGetDeviceCount", "hipGetDeviceProperties", "hipGetErrorString",
                        "hipMemGetInfo", "hipSetDevice"});
}

RuntimeFake Without(const std::string& name) {
  RuntimeFake runtime = CompleteRuntime();
  runtime.erase(name);
  return runtime;
}

class RuntimeSearchTest : public testing::Test {
 protected:
  RuntimeSearchTest() {
    ResetLoader();
    Loader().candidates = {
        {Origin::kLoaded, "new"}, {Origin::kLoaded, "old"},    {Origin::kSearch, "new"},
        {Origin::kSearch, "old"}, {Origin::kPath, "/opt/new"},
    };
  }

  RuntimeFake new_runtime_ = CompleteRuntime();
  RuntimeFake old_runtime_ = CompleteRuntime();
  BindingReport report_;
};

TEST_F(RuntimeSearchTest, LoadedRuntimeComesBeforeNewerLoadableOne) {
  Loader().loaded["old"] = &old_runtime_;
  Loader().loadable["new"] = &new_runtime_;
  EXPECT_EQ(FindRuntime(nullptr), &old_runtime_);
  EXPECT_EQ(Loader().calls, (std::vector<std::string>{"find new", "find old"}));
}

TEST_F(RuntimeSearchTest, NewestOfSeveralLoadedRuntimesIsUsed) {
  Loader().loaded["old"] = &old_runtime_;
  Loader().loaded["new"] = &new_runtime_;
  EXPECT_EQ(FindRuntime(nullptr), &new_runtime_);
}

TEST_F(RuntimeSearchTest, OlderRuntimeIsNotOpenedWhereNewerOneIsComplete) {
  Loader().loadable["new"] = &new_runtime_;
  Loader().loadable["old"] = &old_runtime_;
  EXPECT_EQ(FindRuntime(nullptr), &new_runtime_);
  EXPECT_EQ(Loader().calls, (std::vector<std::string>{"find new", "find old", "open new"}));
}

TEST_F(RuntimeSearchTest, PathIsTriedAfterTheLoadersSearch) {
  Loader().loadable["/opt/new"] = &new_runtime_;
  EXPECT_EQ(FindRuntime(nullptr), &new_runtime_);
  EXPECT_EQ(Loader().calls, (std::vector<std::string>{"find new", "find old", "open new",
                                                      "open old", "open /opt/new"}));
}

TEST_F(RuntimeSearchTest, NothingFoundReturnsNullAndIsSearchedAgain) {
  EXPECT_EQ(FindRuntime(nullptr), nullptr);
  Loader().loadable["old"] = &old_runtime_;
  EXPECT_EQ(FindRuntime(nullptr), &old_runtime_);
}

TEST_F(RuntimeSearchTest, NewRecordFunctionAloneIsEnough) {
  new_runtime_ = Without("hipGetDeviceProperties");
  new_runtime_["hipGetDevicePropertiesR0600"] = FunctionOf(AnyFunction);
  Loader().loadable["new"] = &new_runtime_;
  EXPECT_EQ(FindRuntime(nullptr), &new_runtime_);
}

TEST_F(RuntimeSearchTest, LoadedRuntimeThatLacksAFunctionIsPassedOver) {
  new_runtime_ = Without("hipMemGetInfo");
  Loader().loaded["new"] = &new_runtime_;
  Loader().loadable["old"] = &old_runtime_;
  EXPECT_EQ(FindRuntime(nullptr), &old_runtime_);
}

TEST_F(RuntimeSearchTest, ReportSaysWhyEachCandidateWasPassedOver) {
  new_runtime_ = Without("hipSetDevice");
  Loader().loadable["new"] = &new_runtime_;
  Loader().loadable["/opt/new"] = &old_runtime_;
  EXPECT_EQ(FindRuntime(&report_), &old_runtime_);
  std::vector<std::string> attempts;
  for (std::size_t i = 0; i < report_.attempt_count; ++i) {
    attempts.push_back(std::string(report_.attempts[i].candidate.name) + ": " +
                       report_.attempts[i].reason.data());
  }
  EXPECT_EQ(attempts, (std::vector<std::string>{
                          "new: not loaded by this process", "old: not loaded by this process",
                          "new: has no function hipSetDevice", "old: old: no such file"}));
}

class LackingRuntimeTest : public RuntimeSearchTest,
                           public testing::WithParamInterface<const char*> {};

TEST_P(LackingRuntimeTest, IsClosedAndTheNextCandidateUsed) {
  new_runtime_ = Without(GetParam());
  Loader().loadable["new"] = &new_runtime_;
  Loader().loadable["old"] = &old_runtime_;
  EXPECT_EQ(FindRuntime(&report_), &old_runtime_);
  EXPECT_EQ(Loader().open_handles[&new_runtime_], 0);
  EXPECT_EQ(Loader().open_handles[&old_runtime_], 1);
  ASSERT_EQ(report_.attempt_count, 3U);
  EXPECT_EQ(report_.attempts[2].reason.data(), std::string("has no function ") + GetParam());
}

INSTANTIATE_TEST_SUITE_P(EachFunction, LackingRuntimeTest,
                         testing::Values("hipGetDeviceCount", "hipGetDeviceProperties",
                                         "hipGetErrorString", "hipMemGetInfo", "hipSetDevice"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace
}  // namespace kestrel::tests

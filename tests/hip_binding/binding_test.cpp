#include "hip_binding/binding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "tests/fakes/runtime_library_fake.h"

namespace kestrel::tests {
namespace {

using hip_binding::Binding;
using hip_binding::BindingReport;
using hip_binding::Origin;

int AnyFunction() { return 0; }

class BindingTest : public testing::Test {
 protected:
  BindingTest() {
    ResetLoader();
    Loader().candidates = {{Origin::kSearch, "new"}, {Origin::kSearch, "old"}};
    for (const char* name : {"hipGetDeviceCount", "hipGetDeviceProperties", "hipGetErrorString",
                             "hipMemGetInfo", "hipSetDevice"}) {
      runtime_[name] = FunctionOf(AnyFunction);
    }
    other_runtime_ = runtime_;
  }

  RuntimeFake runtime_;
  RuntimeFake other_runtime_;
  Binding binding_;
  BindingReport report_;
};

TEST_F(BindingTest, SearchesNothingBeforeTheFirstCall) { EXPECT_TRUE(Loader().calls.empty()); }

TEST_F(BindingTest, FoundRuntimeIsKeptWithoutAnotherSearch) {
  Loader().loadable["old"] = &runtime_;
  EXPECT_EQ(binding_.Runtime(), &runtime_);
  Loader().loadable["new"] = &other_runtime_;
  EXPECT_EQ(binding_.Runtime(), &runtime_);
  EXPECT_EQ(Loader().calls, (std::vector<std::string>{"open new", "open old"}));
  EXPECT_EQ(Loader().open_handles[&runtime_], 1);
}

TEST_F(BindingTest, SearchThatFoundNothingIsMadeAgain) {
  EXPECT_EQ(binding_.Runtime(), nullptr);
  Loader().loadable["new"] = &runtime_;
  EXPECT_EQ(binding_.Runtime(), &runtime_);
}

TEST_F(BindingTest, ThreadsOfTheFirstCallAgreeAndKeepTheLibraryOpenOnce) {
  Loader().loadable["new"] = &runtime_;
  std::vector<void*> runtimes(8, nullptr);
  std::vector<std::thread> threads;
  threads.reserve(runtimes.size());
  for (void*& runtime : runtimes) {
    threads.emplace_back([this, &runtime] { runtime = binding_.Runtime(); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(std::count(runtimes.begin(), runtimes.end(), &runtime_), 8);
  EXPECT_EQ(Loader().open_handles[&runtime_], 1);
}

TEST_F(BindingTest, ThreadThatFindsARuntimeSecondUsesTheFirstAndClosesItsOwn) {
  Loader().loadable["new"] = &runtime_;
  Loader().meanwhile = [this] {
    EXPECT_EQ(binding_.Runtime(), &runtime_);
    Loader().loadable["new"] = &other_runtime_;
  };
  EXPECT_EQ(binding_.Runtime(), &runtime_);
  EXPECT_EQ(Loader().open_handles[&runtime_], 1);
  EXPECT_EQ(Loader().open_handles[&other_runtime_], 0);
  EXPECT_EQ(Loader().calls, (std::vector<std::string>{"open new", "open new", "close"}));
}

TEST_F(BindingTest, ThreadThatFindsNoneClosesNone) {
  Loader().meanwhile = [this] {
    Loader().loadable["new"] = &runtime_;
    EXPECT_EQ(binding_.Runtime(), &runtime_);
    Loader().loadable.clear();
  };
  EXPECT_EQ(binding_.Runtime(), nullptr);
  EXPECT_EQ(Loader().calls, (std::vector<std::string>{"open new", "open new", "open old"}));
  EXPECT_EQ(binding_.Runtime(), &runtime_);
}

TEST_F(BindingTest, ReportBindsAndNamesTheFile) {
  Loader().loadable["old"] = &runtime_;
  binding_.Report(report_);
  EXPECT_STREQ(report_.path.data(), "/lib/old");
  EXPECT_FALSE(report_.bound_before);
  ASSERT_EQ(report_.attempt_count, 1U);
  EXPECT_STREQ(report_.attempts[0].candidate.name, "new");
  EXPECT_EQ(binding_.Runtime(), &runtime_);
  EXPECT_EQ(Loader().open_handles[&runtime_], 1);
}

TEST_F(BindingTest, ReportAfterACallSaysSoAndSearchesNothing) {
  Loader().loadable["old"] = &runtime_;
  static_cast<void>(binding_.Runtime());
  Loader().calls.clear();
  binding_.Report(report_);
  EXPECT_STREQ(report_.path.data(), "/lib/old");
  EXPECT_TRUE(report_.bound_before);
  EXPECT_EQ(report_.attempt_count, 0U);
  EXPECT_TRUE(Loader().calls.empty());
}

TEST_F(BindingTest, ReportThatIsUsedAgainHoldsTheLastOutcomeAlone) {
  binding_.Report(report_);
  Loader().loadable["old"] = &runtime_;
  binding_.Report(report_);
  EXPECT_EQ(report_.attempt_count, 1U);
  EXPECT_STREQ(report_.path.data(), "/lib/old");
  binding_.Report(report_);
  EXPECT_EQ(report_.attempt_count, 0U);
  Loader().loadable.clear();
  Binding other;
  other.Report(report_);
  EXPECT_STREQ(report_.path.data(), "");
}

TEST_F(BindingTest, ReportWithoutRuntimeHasEveryAttemptAndNoPath) {
  binding_.Report(report_);
  EXPECT_STREQ(report_.path.data(), "");
  EXPECT_FALSE(report_.bound_before);
  EXPECT_EQ(report_.attempt_count, 2U);
}

}  // namespace
}  // namespace kestrel::tests

#include "command/explain.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/command/machine.h"
#include "tests/fakes/bound_runtime_fake.h"

namespace kestrel::tests {
namespace {

class ExplainTest : public testing::Test {
 protected:
  ExplainTest() { BoundRuntime() = {}; }

  std::string Explain() {
    std::string text;
    command::RunExplain([&](const std::string& step) {
      steps_.push_back(step);
      text += step;
    });
    return text;
  }

  simulator::Machine machine_ = InstallMachine();
  std::vector<std::string> steps_;
};

TEST_F(ExplainTest, EachStepIsWrittenByItself) {
  Explain();
  ASSERT_GE(steps_.size(), 5U);
  EXPECT_EQ(steps_.front().find("Processor\n"), 0U);
  EXPECT_EQ(steps_.back().find("\nMemory\n"), 0U);
}

TEST_F(ExplainTest, RuntimesThatWerePassedOverAreNamedWithTheirReason) {
  BoundRuntime() = {"/usr/lib/libamdhip64.so.6",
                    {{"libamdhip64.so.7", true, "not loaded by this process"},
                     {"libamdhip64.so.7", false, "cannot open shared object file"}}};
  const std::string text = Explain();
  EXPECT_NE(text.find("HIP runtime\n"
                      "  libamdhip64.so.7, already loaded: not loaded by this process\n"
                      "  libamdhip64.so.7: cannot open shared object file\n"
                      "  used: /usr/lib/libamdhip64.so.6\n"),
            std::string::npos)
      << text;
}

TEST_F(ExplainTest, GpusOfHipAreShownWithTheirSource) {
  const std::string text = Explain();
  EXPECT_NE(text.find("HIP: device 1, Graphics, 4.00 GiB in total, 3.00 GiB free"),
            std::string::npos)
      << text;
}

TEST_F(ExplainTest, LimitOfTheMemoryIsNamed) {
  Platform().memory.limit = platform::MemoryLimit::kMemoryGroup;
  Platform().group_directory = "/sys/fs/cgroup/box";
  EXPECT_NE(Explain().find("limited by memory group /sys/fs/cgroup/box"), std::string::npos);
}

}  // namespace
}  // namespace kestrel::tests

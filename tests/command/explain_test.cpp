#include "command/explain.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

#include "command/system_facts.h"
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
  std::vector<std::string> titles = {"Processor",   "Device files", "Masks in the environment",
                                     "HIP runtime", "GPUs",         "\nMemory"};
  if (!command::HasDeviceFiles()) {
    titles.erase(titles.begin() + 1);
  }
  Explain();
  ASSERT_EQ(steps_.size(), titles.size());
  for (std::size_t i = 0; i < titles.size(); ++i) {
    EXPECT_EQ(steps_[i].find(titles[i] + "\n"), 0U) << steps_[i];
    const bool blank_line_follows = i + 2 < titles.size();
    EXPECT_EQ(steps_[i].substr(steps_[i].size() - 2) == "\n\n", blank_line_follows) << steps_[i];
  }
}

TEST_F(ExplainTest, EveryMaskIsShownAsItIsSet) {
  std::string masks = "Masks in the environment\n";
  for (const char* const name : {"ROCR_VISIBLE_DEVICES", "HIP_VISIBLE_DEVICES",
                                 "CUDA_VISIBLE_DEVICES", "GPU_DEVICE_ORDINAL"}) {
    const char* const value = std::getenv(name);
    masks += std::string("  ") + name +
             (value != nullptr ? "='" + std::string(value) + "'\n" : " is not set\n");
  }
  const std::string text = Explain();
  EXPECT_NE(text.find(masks), std::string::npos) << text;
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

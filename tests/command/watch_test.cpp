#include "command/watch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "tests/command/machine.h"

namespace kestrel::tests {
namespace {

// The fake operating system ends each interval at once. It is not made for several threads, so no
// test here watches two processes.
class WatchTest : public testing::Test {
 protected:
  command::Outcome Watch(const command::WatchRequest& request) {
    return command::RunWatch(request, [this](const std::string& text) { lines_.push_back(text); });
  }

  static command::WatchRequest OneProcess(std::uint64_t count) {
    command::WatchRequest request;
    request.pids = {4711};
    request.interval = std::chrono::milliseconds(1);
    request.count = count;
    request.json = true;  // also where the tests run on a terminal
    return request;
  }

  simulator::Machine machine_ = InstallMachine();
  std::vector<std::string> lines_;
};

TEST_F(WatchTest, EndsAfterTheCount) {
  EXPECT_EQ(Watch(OneProcess(3)).status, command::kSuccess);
  EXPECT_EQ(lines_.size(), 3U);
}

TEST_F(WatchTest, WithoutProcessesTheMachineIsWatched) {
  auto request = OneProcess(2);
  request.pids.clear();
  EXPECT_EQ(Watch(request).status, command::kSuccess);
  ASSERT_EQ(lines_.size(), 2U);
  EXPECT_NE(lines_[1].find("\"processes\":[]"), std::string::npos) << lines_[1];
}

TEST_F(WatchTest, SampleHasTheTimeOfItsEnd) {
  const auto now = [] {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
  };
  const auto before = now();
  Watch(OneProcess(1));
  const auto time = std::stoll(lines_.at(0).substr(std::string("{\"time_ms\":").size()));
  EXPECT_GE(time, before);
  EXPECT_LE(time, now());
}

TEST_F(WatchTest, EndsWithTheProcess) {
  Platform().Fail("Process::Open", 4);  // it is opened twice for each sample
  const auto outcome = Watch(OneProcess(100));
  EXPECT_EQ(outcome.status, command::kSuccess);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.error, "");
  ASSERT_FALSE(lines_.empty());
  EXPECT_LT(lines_.size(), 100U);
  EXPECT_NE(lines_.front().find("\"running\":true"), std::string::npos);
  EXPECT_NE(lines_.back().find("\"running\":false"), std::string::npos) << lines_.back();
}

TEST_F(WatchTest, ProcessThatWasNeverThereIsAFailure) {
  Platform().Fail("Process::Open");
  const auto outcome = Watch(OneProcess(100));
  EXPECT_EQ(outcome.status, command::kFailure);
  EXPECT_EQ(outcome.error, "kestrel watch: none of the processes can be measured");
  EXPECT_EQ(lines_.size(), 1U);
}

}  // namespace
}  // namespace kestrel::tests

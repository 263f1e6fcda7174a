// The table of kestrel watch on a terminal that the test changes.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "command/watch.h"
#include "tests/command/machine.h"
#include "tests/fakes/terminal_fake.h"

namespace kestrel::tests {
namespace {

const std::string kEnter = "\x1B[?1049h\x1B[?25l";
const std::string kLeave = "\x1B[?25h\x1B[?1049l";
const std::string kTitle = "kestrel watch, every 3600000 ms, Ctrl-C ends";

// What is written for the table before the first sample.
std::string Empty(const std::string& title) { return "\x1B[H\x1B[K" + title + "\x1B[J"; }

class WatchLiveTest : public testing::Test {
 protected:
  WatchLiveTest() { Terminal() = {}; }

  void Watch(const command::WatchRequest& request) {
    const auto outcome = command::RunWatch(request, [this](const std::string& text) {
      written_.push_back(text);
      Terminal().calls.push_back("write");
    });
    EXPECT_EQ(outcome.status, command::kSuccess);
    EXPECT_EQ(outcome.error, "");
  }

  // An interval that no test waits for: the user interrupts, or the fake process ends it at once.
  static command::WatchRequest Request() {
    command::WatchRequest request;
    request.interval = std::chrono::hours(1);
    return request;
  }

  simulator::Machine machine_ = InstallMachine();
  std::vector<std::string> written_;
};

TEST_F(WatchLiveTest, TableFollowsTheSizeOfTheTerminal) {
  Terminal().attend = [](int time) {
    if (time == 1) {
      Terminal().size.columns = 13;
    } else if (time == 2) {
      Terminal().size.rows = 10;
    }
    return time == 4;  // at the third nothing has changed
  };
  Watch(Request());
  EXPECT_EQ(written_,
            (std::vector<std::string>{kEnter, Empty(kTitle), Empty("kestrel watch"),
                                      Empty("kestrel watch"), kLeave, "kestrel watch\n"}));
}

TEST_F(WatchLiveTest, StopShowsTheFormerScreenUntilTheProcessIsContinued) {
  Terminal().attend = [](int time) {
    Terminal().is_stop_requested = time == 1;
    return time == 2;
  };
  Watch(Request());
  EXPECT_EQ(written_, (std::vector<std::string>{kEnter, Empty(kTitle), kLeave, kEnter,
                                                Empty(kTitle), kLeave, kTitle + "\n"}));
  EXPECT_EQ(Terminal().calls, (std::vector<std::string>{"CatchInterrupts", "live", "write", "write",
                                                        "write", "StopProcess", "write", "write",
                                                        "write", "write", "no longer live"}));
}

TEST_F(WatchLiveTest, EachSampleIsDrawnAndTheLastStays) {
  auto request = Request();
  request.pids = {4711};
  request.count = 2;
  Platform().resident_bytes = kGiB;
  Watch(request);
  // A sample that takes long is preceded by the empty table.
  written_.erase(std::remove(written_.begin(), written_.end(), Empty(kTitle)), written_.end());
  ASSERT_EQ(written_.size(), 9U);
  EXPECT_EQ(written_[1], "\x1B[H\x1B[K" + kTitle +
                             "\r\n\x1B[Kavailable RAM             6.00 GiB  -\r\n"
                             "\x1B[K"
                             "free VRAM 0               7.00 GiB  %\r\n"
                             "\x1B[K"
                             "free VRAM 1               3.00 GiB  *\r\n"
                             "\x1B[KPID 4711           0.0 %  1.00 GiB   \x1B[J");
  EXPECT_NE(written_[2].find("available RAM             6.00 GiB  --\r\n"), std::string::npos);
  EXPECT_EQ(
      std::vector<std::string>(written_.begin() + 3, written_.end()),
      (std::vector<std::string>{kLeave, kTitle + "\n", "available RAM             6.00 GiB  --\n",
                                "free VRAM 0               7.00 GiB  %%\n",
                                "free VRAM 1               3.00 GiB  **\n",
                                "PID 4711           0.0 %  1.00 GiB    \n"}));
}

TEST_F(WatchLiveTest, BlocksAreDrawnWhereTheTerminalShowsThem) {
  Terminal().shows_unicode = true;
  auto request = Request();
  request.pids = {4711};
  request.count = 1;
  Watch(request);
  EXPECT_NE(written_[written_.size() - 4].find("6.00 GiB  \u2583"), std::string::npos);
}

TEST_F(WatchLiveTest, SamplesForProgramsAreLinesOnATerminalToo) {
  auto request = Request();
  request.pids = {4711};
  request.count = 1;
  request.json = true;
  Watch(request);
  ASSERT_EQ(written_.size(), 1U);
  EXPECT_EQ(written_[0].find("{\"time_ms\":"), 0U);
}

TEST_F(WatchLiveTest, LinesAreTextWithoutATerminal) {
  Terminal().is_terminal = false;
  auto request = Request();
  request.pids = {4711};
  request.count = 1;
  Watch(request);
  EXPECT_EQ(written_,
            (std::vector<std::string>{"RAM 6.00 GiB available; VRAM 0 7.00 GiB free; VRAM "
                                      "1 3.00 GiB free; PID 4711 0.0 % 0 B\n"}));
}

TEST_F(WatchLiveTest, ProcessThatWasMeasuredOnceHasEndedAfterwards) {
  Terminal().is_terminal = false;
  Platform().Fail("Process::Open", 3);  // it is opened twice for the first sample
  auto request = Request();
  request.pids = {4711};
  Watch(request);
  ASSERT_EQ(written_.size(), 2U);
  EXPECT_NE(written_[0].find("PID 4711 0.0 %"), std::string::npos) << written_[0];
  EXPECT_NE(written_[1].find("PID 4711 ended"), std::string::npos) << written_[1];
}

TEST_F(WatchLiveTest, InterruptAfterASampleLeavesItOut) {
  command::WatchRequest request;
  request.interval = std::chrono::milliseconds(0);
  request.json = true;
  Terminal().attend = [](int) { return true; };
  Watch(request);
  EXPECT_TRUE(written_.empty());
}

TEST_F(WatchLiveTest, TerminalThatIsGoneEndsTheWatch) {
  int writes = 0;
  const auto write = [&](const std::string&) {
    if (++writes > 1) {
      throw command::OutputError("gone");
    }
  };
  command::WatchRequest request;
  request.interval = std::chrono::milliseconds(0);
  EXPECT_THROW(command::RunWatch(request, write), command::OutputError);
  EXPECT_EQ(Terminal().calls.back(), "no longer live");
}

}  // namespace
}  // namespace kestrel::tests

#include "command/program.h"

#include <gtest/gtest.h>

#include "tests/command/machine.h"

namespace kestrel::tests {
namespace {

using command::RunProgram;

class ProgramTest : public testing::Test {
 protected:
  simulator::Machine machine_ = InstallMachine();
};

TEST_F(ProgramTest, HelpIsASuccess) {
  const auto outcome = RunProgram({"--help"});
  EXPECT_EQ(outcome.status, command::kSuccess);
  EXPECT_NE(outcome.output, "");
  EXPECT_EQ(outcome.error, "");
}

TEST_F(ProgramTest, WrongCommandLineHasItsOwnStatus) {
  const auto outcome = RunProgram({"fits"});
  EXPECT_EQ(outcome.status, command::kWrongUsage);
  EXPECT_EQ(outcome.output, "");
  EXPECT_NE(outcome.error, "");
}

TEST_F(ProgramTest, IncompleteSurveyIsReportedAndAFailure) {
  Platform().Fail("QueryMemoryLimit");
  const auto outcome = RunProgram({"survey"});
  EXPECT_EQ(outcome.status, command::kFailure);
  EXPECT_NE(outcome.output.find("Failed to get global memory status."), std::string::npos);
  EXPECT_EQ(outcome.error,
            "kestrel survey: a part of the machine could not be read; the report says which");
}

TEST_F(ProgramTest, SurveyOfAMachineWithoutGpuIsASuccess) {
  simulator::Install({});
  EXPECT_EQ(RunProgram({"survey"}).status, command::kSuccess);
}

}  // namespace
}  // namespace kestrel::tests

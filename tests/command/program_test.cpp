#include "command/program.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "tests/command/machine.h"

namespace kestrel::tests {
namespace {

// Keeps what is written in the outcome.
command::Outcome RunProgram(const std::vector<std::string>& arguments) {
  std::string written;
  command::Outcome outcome =
      command::RunProgram(arguments, [&](const std::string& text) { written += text; });
  EXPECT_EQ(outcome.output, "");
  outcome.output = written;
  return outcome;
}

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

TEST_F(ProgramTest, EmptyCommandLineIsWrong) {
  EXPECT_EQ(RunProgram({}).status, command::kWrongUsage);
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

TEST_F(ProgramTest, OutputThatCannotBeWrittenHasItsOwnStatus) {
  const auto outcome = command::RunProgram({"survey"}, [](const std::string&) {
    throw command::OutputError("No space left on device");
  });
  EXPECT_EQ(outcome.status, command::kOutputFailure);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.error, "kestrel: the output could not be written: No space left on device");
}

TEST_F(ProgramTest, ExceptionOfAnyTypeIsAFailure) {
  const auto outcome = command::RunProgram({"record"}, [](const std::string&) { throw 7; });
  EXPECT_EQ(outcome.status, command::kFailure);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.error, "kestrel: the GPU runtime threw an exception");
}

TEST_F(ProgramTest, ExceptionLeavesFitsUndetermined) {
  const auto outcome =
      command::RunProgram({"fits", "1"}, [](const std::string&) { throw std::bad_alloc(); });
  EXPECT_EQ(outcome.status, command::kUndetermined);
  EXPECT_EQ(command::RunProgram({"fits", "1"}, [](const std::string&) { throw 7; }).status,
            command::kUndetermined);
}

TEST_F(ProgramTest, ExceptionOfTheStandardLibraryIsAFailureWithItsText) {
  const auto outcome = command::RunProgram(
      {"record"}, [](const std::string&) { throw std::runtime_error("of the runtime"); });
  EXPECT_EQ(outcome.status, command::kFailure);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.error, "kestrel: of the runtime");
}

TEST_F(ProgramTest, EachSubcommandRuns) {
  EXPECT_EQ(RunProgram({"survey", "--format", "labels"}).output.find("kestrel-cpu."), 0U);
  EXPECT_EQ(RunProgram({"fits", "1"}).output.find("fits: 1 B leaves "), 0U);
  EXPECT_EQ(RunProgram({"fits", "1024P"}).status, command::kWouldFail);
  const auto watched =
      RunProgram({"watch", "--count", "1", "--interval", "1ms", "--format", "json"});
  EXPECT_EQ(watched.output.find("{\"time_ms\":"), 0U) << watched.output;
  EXPECT_EQ(watched.status, command::kSuccess);
}

TEST_F(ProgramTest, RecordWithoutAFileWritesToStandardOutput) {
  const auto outcome = RunProgram({"record"});
  EXPECT_EQ(outcome.status, command::kSuccess);
  EXPECT_EQ(outcome.output.find("# Recorded by kestrel "), 0U);
}

TEST_F(ProgramTest, ExplanationIsASuccess) {
  const auto outcome = RunProgram({"explain"});
  EXPECT_EQ(outcome.status, command::kSuccess);
  EXPECT_EQ(outcome.output.find("Processor\n"), 0U);
}

}  // namespace
}  // namespace kestrel::tests

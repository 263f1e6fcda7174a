#include "command/command_line.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "c/kestrelcore.h"
#include "command/manual.h"

namespace kestrel::tests {
namespace {

using command::ParseCommandLine;
using command::SurveyFormat;

template <typename Request>
Request Parse(const std::vector<std::string>& arguments) {
  const auto request = ParseCommandLine(arguments);
  if (const auto* refusal = std::get_if<command::Refusal>(&request)) {
    ADD_FAILURE() << refusal->message;
  }
  return std::get<Request>(request);
}

std::string RefusalOf(const std::vector<std::string>& arguments) {
  const auto request = ParseCommandLine(arguments);
  const auto* refusal = std::get_if<command::Refusal>(&request);
  return refusal == nullptr ? "accepted" : refusal->message;
}

TEST(CommandLineTest, SurveyTakesEachFormat) {
  EXPECT_EQ(Parse<command::SurveyRequest>({"survey"}).format, SurveyFormat::kText);
  EXPECT_EQ(Parse<command::SurveyRequest>({"survey", "--format", "json"}).format,
            SurveyFormat::kJson);
  EXPECT_EQ(Parse<command::SurveyRequest>({"survey", "--format=prometheus"}).format,
            SurveyFormat::kPrometheus);
  EXPECT_EQ(Parse<command::SurveyRequest>({"survey", "--format", "labels"}).format,
            SurveyFormat::kLabels);
}

TEST(CommandLineTest, FitsTakesASizeAndADevice) {
  const auto ram = Parse<command::FitsRequest>({"fits", "1K"});
  EXPECT_EQ(ram.bytes, 1024U);
  EXPECT_FALSE(ram.vram);
  const auto vram = Parse<command::FitsRequest>({"fits", "--vram", "--device", "3", "5"});
  EXPECT_TRUE(vram.vram);
  EXPECT_EQ(vram.device, 3);
  EXPECT_EQ(Parse<command::FitsRequest>({"fits", "5", "--vram"}).device, 0);
}

TEST(CommandLineTest, WatchTakesProcessesAnIntervalACountAndAFormat) {
  const auto machine = Parse<command::WatchRequest>({"watch"});
  EXPECT_TRUE(machine.pids.empty());
  EXPECT_EQ(machine.interval, std::chrono::milliseconds(1000));
  EXPECT_EQ(machine.count, std::nullopt);
  EXPECT_FALSE(machine.json);
  const auto processes = Parse<command::WatchRequest>(
      {"watch", "1", "2147483647", "--interval", "2ms", "--count", "1", "--format", "json"});
  EXPECT_EQ(processes.pids, (std::vector<int>{1, 2147483647}));
  EXPECT_EQ(processes.interval, std::chrono::milliseconds(2));
  EXPECT_EQ(processes.count, 1U);
  EXPECT_TRUE(processes.json);
  EXPECT_FALSE(Parse<command::WatchRequest>({"watch", "--format", "text"}).json);
  EXPECT_EQ(Parse<command::WatchRequest>({"watch", "--count", "18446744073709551615"}).count,
            18446744073709551615U);
}

TEST(CommandLineTest, RecordTakesAFileOrNone) {
  EXPECT_EQ(Parse<command::RecordRequest>({"record"}).file, "");
  EXPECT_EQ(Parse<command::RecordRequest>({"record", "a b.toml"}).file, "a b.toml");
}

TEST(CommandLineTest, ExplainTakesNothing) {
  Parse<command::ExplainRequest>({"explain"});
  EXPECT_NE(RefusalOf({"explain", "1"}), "accepted");
}

TEST(CommandLineTest, HelpOfEverySubcommandHasItsExample) {
  for (const auto& subcommand : command::KestrelManual().subcommands) {
    const auto help = Parse<command::TextRequest>({subcommand.name, "--help"}).text;
    EXPECT_NE(help.find(subcommand.summary), std::string::npos) << help;
    EXPECT_NE(help.find(subcommand.example), std::string::npos) << help;
    for (const auto& option : subcommand.options) {
      EXPECT_NE(help.find(option.name), std::string::npos) << help;
      EXPECT_NE(help.find(option.help), std::string::npos) << help;
    }
  }
}

TEST(CommandLineTest, HelpOfTheProgramListsEverySubcommand) {
  const auto help = Parse<command::TextRequest>({"--help"}).text;
  for (const auto& subcommand : command::KestrelManual().subcommands) {
    EXPECT_NE(help.find("  " + subcommand.name + " "), std::string::npos) << help;
  }
}

TEST(CommandLineTest, VersionIsOneLine) {
  const auto text = Parse<command::TextRequest>({"--version"}).text;
  EXPECT_EQ(text, std::string("kestrel ") + kestrel_version_text() + "\n");
}

TEST(CommandLineTest, RefusalSaysInOneLineWhatIsWrongAndWhatIsAllowed) {
  EXPECT_EQ(RefusalOf({}),
            "kestrel: A subcommand is required (survey, fits, watch, explain, record; see 'kestrel "
            "--help')");
  EXPECT_EQ(RefusalOf({"nope"}),
            "kestrel: 'nope' is not a subcommand (survey, fits, watch, explain, record; see "
            "'kestrel --help')");
  EXPECT_EQ(RefusalOf({"--nope"}),
            "kestrel: '--nope' is neither an option nor a subcommand (survey, fits, watch, "
            "explain, record; see 'kestrel --help')");
  EXPECT_EQ(RefusalOf({"survey", "--format", "xml"}),
            "kestrel survey: --format: xml not in {text,json,prometheus,labels} (see 'kestrel "
            "survey --help')");
  EXPECT_EQ(RefusalOf({"survey", "--format", "x\ny"}),
            "kestrel survey: --format: x y not in {text,json,prometheus,labels} (see 'kestrel "
            "survey --help')");
  EXPECT_EQ(RefusalOf({"fits"}), "kestrel fits: SIZE is required (see 'kestrel fits --help')");
  EXPECT_EQ(RefusalOf({"fits", "many"}),
            "kestrel fits: SIZE 'many' is not a number of bytes below 2^64, such as 800MB, 1.5G or "
            "24GiB (see 'kestrel fits --help')");
  EXPECT_EQ(RefusalOf({"fits", "1", "--device", "1"}),
            "kestrel fits: --device needs --vram (see 'kestrel fits --help')");
  EXPECT_EQ(RefusalOf({"fits", "1", "--vram", "--device", "x"}),
            "kestrel fits: --device 'x' is not the number of a GPU, from 0 (see 'kestrel fits "
            "--help')");
  for (const std::string pid : {"0", "x", "2147483648"}) {
    EXPECT_EQ(RefusalOf({"watch", "1", pid}),
              "kestrel watch: PID '" + pid +
                  "' is not the number of a process, from 1 (see 'kestrel watch --help')");
  }
  EXPECT_EQ(RefusalOf({"watch", "--interval", "0"}),
            "kestrel watch: --interval '0' is not a time from 1ms to a day, such as 500ms, 1s or "
            "2m (see 'kestrel watch --help')");
  for (const std::string count : {"0", "x", "18446744073709551616"}) {
    EXPECT_EQ(RefusalOf({"watch", "--count", count}),
              "kestrel watch: --count '" + count +
                  "' is not a number of samples, from 1 (see 'kestrel watch --help')");
  }
  EXPECT_EQ(RefusalOf({"watch", "--format", "xml"}),
            "kestrel watch: --format: xml not in {text,json} (see 'kestrel watch --help')");
  EXPECT_EQ(RefusalOf({"fits", "1", "--vram", "--device", "2147483648"}),
            "kestrel fits: --device '2147483648' is not the number of a GPU, from 0 (see 'kestrel "
            "fits --help')");
  EXPECT_EQ(RefusalOf({"record", ""}),
            "kestrel record: FILE is empty (see 'kestrel record --help')");
  for (const auto& arguments : std::vector<std::vector<std::string>>{
           {"-z"}, {"survey", "extra"}, {"survey", "-z"}, {"fits", "1", "2"}, {"fits", "-1"}}) {
    EXPECT_EQ(RefusalOf(arguments).find("kestrel"), 0U);
    EXPECT_EQ(RefusalOf(arguments).find('\n'), std::string::npos);
  }
}

}  // namespace
}  // namespace kestrel::tests

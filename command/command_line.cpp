#include "command/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "command/amounts.h"
#include "command/manual.h"
#include "command/version.h"

namespace kestrel::command {

namespace {

constexpr std::uint64_t kMaxInt = std::numeric_limits<int>::max();

// What stops the reading of a command line that CLI11 accepted.
struct Refused {
  std::string message;
};

CLI::Option* Add(CLI::App& app, const Parameter& parameter) {
  const std::string name =
      parameter.letter.empty() ? parameter.name : "-" + parameter.letter + "," + parameter.name;
  if (parameter.value.empty()) {
    return app.add_flag(name, parameter.help);
  }
  CLI::Option* const option = app.add_option(name, CLI::callback_t(), parameter.help);
  option->type_name(parameter.value == parameter.name ? "" : parameter.value);
  option->default_str(parameter.standard);
  if (!parameter.values.empty()) {
    option->check(CLI::IsMember(parameter.values));
  }
  return option;
}

void AddSubcommand(CLI::App& app, const Subcommand& subcommand) {
  CLI::App* const sub = app.add_subcommand(subcommand.name, subcommand.summary);
  sub->footer("Example:\n  " + subcommand.example + "\n  " + subcommand.example_meaning + ".");
  for (const Parameter& argument : subcommand.arguments) {
    Add(*sub, argument)->required(argument.name == "SIZE");
  }
  for (const Parameter& option : subcommand.options) {
    if (option.name != "--help") {  // CLI11 adds that itself
      Add(*sub, option);
    }
  }
}

// The text of a value, also where it is the standard one.
std::string Value(const CLI::App& app, const std::string& name) {
  const CLI::Option* const option = app.get_option(name);
  return option->count() > 0 ? option->results().front() : option->get_default_str();
}

SurveyRequest ReadSurvey(const CLI::App& app) {
  constexpr std::array<std::pair<const char*, SurveyFormat>, 4> kFormats = {
      {{"text", SurveyFormat::kText},
       {"json", SurveyFormat::kJson},
       {"prometheus", SurveyFormat::kPrometheus},
       {"labels", SurveyFormat::kLabels}}};
  const std::string name = Value(app, "--format");
  const auto* const format = std::find_if(kFormats.begin(), kFormats.end(),
                                          [&](const auto& entry) { return entry.first == name; });
  return {format->second};
}

FitsRequest ReadFits(const CLI::App& app) {
  FitsRequest request;
  const std::string size = Value(app, "SIZE");
  const auto bytes = ParseSize(size);
  if (!bytes) {
    throw Refused{"SIZE '" + size +
                  "' is not a number of bytes below 2^64, such as 800MB, 1.5G or 24GiB"};
  }
  request.bytes = *bytes;
  request.vram = app.count("--vram") > 0;
  if (app.count("--device") > 0 && !request.vram) {
    throw Refused{"--device needs --vram"};
  }
  const std::string device = Value(app, "--device");
  const auto number = ParseNumber(device, kMaxInt);
  if (!number) {
    throw Refused{"--device '" + device + "' is not the number of a GPU, from 0"};
  }
  request.device = static_cast<int>(*number);
  return request;
}

WatchRequest ReadWatch(const CLI::App& app) {
  WatchRequest request;
  for (const std::string& text : app.get_option("PID")->results()) {
    const auto pid = ParseNumber(text, kMaxInt);
    if (!pid || *pid == 0) {
      throw Refused{"PID '" + text + "' is not the number of a process, from 1"};
    }
    request.pids.push_back(static_cast<int>(*pid));
  }
  const std::string interval = Value(app, "--interval");
  const auto time = ParseInterval(interval);
  if (!time) {
    throw Refused{"--interval '" + interval +
                  "' is not a time from 1ms to a day, such as 500ms, 1s or 2m"};
  }
  request.interval = *time;
  if (app.count("--count") > 0) {
    const std::string count = Value(app, "--count");
    request.count = ParseNumber(count, std::numeric_limits<std::uint64_t>::max());
    if (request.count.value_or(0) == 0) {
      throw Refused{"--count '" + count + "' is not a number of samples, from 1"};
    }
  }
  request.json = Value(app, "--format") == "json";
  return request;
}

RecordRequest ReadRecord(const CLI::App& app) {
  RecordRequest request{Value(app, "FILE")};
  if (app.count("FILE") > 0 && request.file.empty()) {
    throw Refused{"FILE is empty"};
  }
  return request;
}

Request Read(const CLI::App& app) {
  const std::string& name = app.get_name();
  if (name == "survey") {
    return ReadSurvey(app);
  }
  if (name == "fits") {
    return ReadFits(app);
  }
  if (name == "watch") {
    return ReadWatch(app);
  }
  if (name == "record") {
    return ReadRecord(app);
  }
  return ExplainRequest{};
}

std::string SubcommandNames() {
  std::string names;
  for (const Subcommand& subcommand : KestrelManual().subcommands) {
    names += (names.empty() ? "" : ", ") + subcommand.name;
  }
  return names;
}

// The texts of CLI11 may have several lines.
Refusal Refuse(const CLI::App& app, std::string message) {
  std::replace(message.begin(), message.end(), '\n', ' ');
  const auto chosen = app.get_subcommands();
  if (chosen.empty()) {
    const auto unknown = app.remaining();
    if (!unknown.empty()) {
      const bool is_option = unknown.front().rfind('-', 0) == 0;
      message = "'" + unknown.front() + "' is " +
                (is_option ? "neither an option nor a subcommand" : "not a subcommand");
    }
    return {app.get_name() + ": " + message + " (" + SubcommandNames() + "; see '" +
            app.get_name() + " --help')"};
  }
  const std::string command = app.get_name() + " " + chosen.front()->get_name();
  return {command + ": " + message + " (see '" + command + " --help')"};
}

void Fill(CLI::App& app) {
  app.set_help_flag("-h,--help", "Print this help and end");
  app.set_version_flag("--version", std::string("kestrel ") + kVersion,
                       "Print the version and end");
  app.require_subcommand(1);
  for (const Subcommand& subcommand : KestrelManual().subcommands) {
    AddSubcommand(app, subcommand);
  }
  app.get_subcommand("watch")->get_option("PID")->expected(1, -1)->allow_extra_args();
  app.footer("'kestrel SUBCOMMAND --help' describes a subcommand.");
}

}  // namespace

Request ParseCommandLine(std::vector<std::string> arguments) {
  CLI::App app(KestrelManual().summary, KestrelManual().program);
  Fill(app);
  std::reverse(arguments.begin(), arguments.end());  // CLI11 takes them from the end
  try {
    app.parse(std::move(arguments));
    return Read(*app.get_subcommands().front());
  } catch (const CLI::CallForHelp&) {
    return TextRequest{app.help()};
  } catch (const CLI::CallForVersion&) {
    return TextRequest{app.version() + "\n"};
  } catch (const CLI::ParseError& error) {
    return Refuse(app, error.what());
  } catch (const Refused& refused) {
    return Refuse(app, refused.message);
  }
}

}  // namespace kestrel::command

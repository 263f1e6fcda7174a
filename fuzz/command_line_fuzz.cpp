// The command line of kestrel: whatever the arguments are, they give a request within its bounds or
// one line that refuses them. The input is one argument a line.

#include "command/command_line.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"

namespace kestrel::fuzz {

namespace {

using namespace std::chrono_literals;

struct RequireBounds {
  void operator()(const command::SurveyRequest& request) const {
    Require(request.format <= command::SurveyFormat::kLabels, "a survey has a format");
  }
  void operator()(const command::FitsRequest& request) const {
    Require(request.device >= 0, "a device is counted from 0");
    Require(request.vram || request.device == 0, "a device is asked for its memory only");
  }
  void operator()(const command::WatchRequest& request) const {
    for (const int pid : request.pids) {
      Require(pid >= 1, "a process is counted from 1");
    }
    Require(request.interval >= 1ms && request.interval <= 24h, "an interval is up to a day");
    Require(request.count.value_or(1) >= 1, "a count is at least 1");
  }
  void operator()(const command::ExplainRequest& /*request*/) const {}
  void operator()(const command::RecordRequest& /*request*/) const {}
  void operator()(const command::TextRequest& request) const {
    Require(!request.text.empty() && request.text.back() == '\n', "a text has complete lines");
  }
  void operator()(const command::Refusal& refusal) const {
    const std::string& message = refusal.message;
    const std::string end = " --help')";
    Require(message.rfind("kestrel", 0) == 0, "a refusal names the program first");
    Require(message.find('\n') == std::string::npos, "a refusal is one line");
    Require(message.size() > end.size() &&
                message.compare(message.size() - end.size(), end.size(), end) == 0,
            "a refusal says where the help is");
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The arguments of a program end with NUL, so that none has one.
  const std::string text = TextOf(data, size);
  const std::vector<std::string> arguments =
      text.empty() ? std::vector<std::string>() : Split(text.substr(0, text.find('\0')), '\n');
  std::visit(RequireBounds(), command::ParseCommandLine(arguments));
  return 0;
}

}  // namespace kestrel::fuzz

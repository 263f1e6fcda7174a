#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kestrel::command {

enum class SurveyFormat : std::uint8_t { kText, kJson, kPrometheus, kLabels };

struct SurveyRequest {
  SurveyFormat format = SurveyFormat::kText;
};

struct FitsRequest {
  std::uint64_t bytes = 0;
  bool vram = false;
  int device = 0;  // asked if `vram`
};

struct WatchRequest {
  std::vector<int> pids;
  std::chrono::milliseconds interval{1000};
  std::optional<std::uint64_t> count;  // samples; without end if not set
  bool json = false;
};

struct ExplainRequest {};

struct RecordRequest {
  std::string file;  // empty for standard output
};

// A text that was asked for: help or the version.
struct TextRequest {
  std::string text;
};

// A wrong command line.
struct Refusal {
  std::string message;  // one line: what is wrong, and what is allowed
};

using Request = std::variant<SurveyRequest, FitsRequest, WatchRequest, ExplainRequest,
                             RecordRequest, TextRequest, Refusal>;

// Reads the arguments that follow the program's name.
Request ParseCommandLine(std::vector<std::string> arguments);

}  // namespace kestrel::command

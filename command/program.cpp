#include "command/program.h"

#include <exception>
#include <utility>
#include <variant>

#include "c/processor.h"
#include "command/command_line.h"
#include "command/fits.h"
#include "command/survey.h"

namespace kestrel::command {

namespace {

Outcome Run(const SurveyRequest& request) { return RunSurvey(request); }
Outcome Run(const FitsRequest& request) { return RunFits(request); }
Outcome Run(const TextRequest& request) { return {kSuccess, request.text, ""}; }
Outcome Run(const Refusal& refusal) { return {kWrongUsage, "", refusal.message}; }

// What the library's own code needs; the other requests run on every x86-64 processor.
template <typename Request>
constexpr bool kNeedsAvx2 = false;
template <>
constexpr bool kNeedsAvx2<SurveyRequest> = true;
template <>
constexpr bool kNeedsAvx2<FitsRequest> = true;

template <typename Request>
Outcome RunIfSupported(const Request& request) {
  if (kNeedsAvx2<Request> && !c::ProcessorIsSupported()) {
    const int status = std::is_same_v<Request, FitsRequest> ? kUndetermined : kFailure;
    return {status, "",
            "kestrel: this processor lacks AVX2, or the operating system has not enabled it"};
  }
  return Run(request);
}

}  // namespace

Outcome RunProgram(std::vector<std::string> arguments) {
  try {
    return std::visit([](const auto& request) { return RunIfSupported(request); },
                      ParseCommandLine(std::move(arguments)));
  } catch (const std::exception& exception) {
    return {kFailure, "", std::string("kestrel: ") + exception.what()};
  }
}

}  // namespace kestrel::command

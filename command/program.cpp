#include "command/program.h"

#include <exception>
#include <type_traits>
#include <utility>
#include <variant>

#include "c/processor.h"
#include "command/command_line.h"
#include "command/explain.h"
#include "command/fits.h"
#include "command/record.h"
#include "command/survey.h"
#include "command/watch.h"

namespace kestrel::command {

namespace {

// Runs a request of each kind. Those that write only once return their output.
struct Runner {
  const Writer& write;

  Outcome operator()(const SurveyRequest& request) const { return RunSurvey(request); }
  Outcome operator()(const FitsRequest& request) const { return RunFits(request); }
  Outcome operator()(const WatchRequest& request) const { return RunWatch(request, write); }
  Outcome operator()(const ExplainRequest& /*request*/) const { return RunExplain(write); }
  Outcome operator()(const RecordRequest& request) const { return RunRecord(request); }
  Outcome operator()(const TextRequest& request) const { return {kSuccess, request.text, ""}; }
  Outcome operator()(const Refusal& refusal) const { return {kWrongUsage, "", refusal.message}; }
};

// What the library's own code needs; the other requests run on every x86-64 processor.
template <typename Request>
constexpr bool kNeedsAvx2 = false;
template <>
constexpr bool kNeedsAvx2<SurveyRequest> = true;
template <>
constexpr bool kNeedsAvx2<FitsRequest> = true;
template <>
constexpr bool kNeedsAvx2<WatchRequest> = true;

template <typename Request>
Outcome RunIfSupported(const Request& request, const Writer& write) {
  if (kNeedsAvx2<Request> && !c::ProcessorIsSupported()) {
    return {FailureStatus(std::is_same_v<Request, FitsRequest>), "",
            "kestrel: this processor lacks AVX2, or the operating system has not enabled it; "
            "'kestrel explain' says more"};
  }
  return Runner{write}(request);
}

}  // namespace

Outcome RunProgram(std::vector<std::string> arguments, const Writer& write) {
  const int failure = FailureStatus(!arguments.empty() && arguments.front() == "fits");
  try {
    Outcome outcome =
        std::visit([&](const auto& request) { return RunIfSupported(request, write); },
                   ParseCommandLine(std::move(arguments)));
    write(std::exchange(outcome.output, {}));
    return outcome;
  } catch (const OutputError& error) {
    return {kOutputFailure, "",
            std::string("kestrel: the output could not be written: ") + error.what()};
  } catch (const std::exception& exception) {
    return {failure, "", std::string("kestrel: ") + exception.what()};
  } catch (...) {  // only a GPU runtime throws anything else
    return {failure, "", "kestrel: the GPU runtime threw an exception"};
  }
}

}  // namespace kestrel::command

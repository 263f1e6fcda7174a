#include "command/bound_runtime.h"

#include "command/text.h"
#include "hip_binding/binding_report.h"

namespace kestrel::command {

RuntimeState BindRuntime() {
  hip_binding::BindingReport report;
  hip_binding::ReportBinding(report);
  RuntimeState state;
  state.path = PrintableText(report.path.data());
  for (std::size_t i = 0; i < report.attempt_count; ++i) {
    const auto& [candidate, reason] = report.attempts[i];
    state.passed.push_back({candidate.name, candidate.origin == hip_binding::Origin::kLoaded,
                            PrintableText(reason.data())});
  }
  return state;
}

}  // namespace kestrel::command

#include <cstdio>
#include <string>

#include "command/program.h"
#include "command/standard_output.h"
#include "command/terminal.h"

int main(int argc, char** argv) {
  using kestrel::command::Outcome;

  kestrel::command::KeepRunningAfterClosedPipe();
  Outcome outcome = kestrel::command::RunProgram({argv + (argc > 0 ? 1 : 0), argv + argc});
  const std::string failure = kestrel::command::WriteOutput(outcome.output);
  if (!failure.empty()) {
    outcome = {kestrel::command::kOutputFailure, "",
               "kestrel: the output could not be written: " + failure};
  }
  if (!outcome.error.empty()) {
    std::fprintf(stderr, "%s\n", outcome.error.c_str());
  }
  return outcome.status;
}

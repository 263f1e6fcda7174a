#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "command/program.h"
#include "command/standard_output.h"
#include "command/terminal.h"

namespace {

int status_without_memory = kestrel::command::kFailure;

// What ends the program is a lack of memory: in the report of a failure, or in the functions of
// CLI11 and nlohmann-json that allocate although they are noexcept.
[[noreturn]] void EndWithoutMemory() {
  std::fputs("kestrel: out of memory\n", stderr);
  std::_Exit(status_without_memory);
}

}  // namespace

int main(int argc, char** argv) {
  const bool fits = argc > 1 && std::strcmp(argv[1], "fits") == 0;
  status_without_memory = kestrel::command::FailureStatus(fits);
  std::set_terminate(EndWithoutMemory);
  kestrel::command::PrepareStandardOutput();
  const auto ended = kestrel::command::RunProgram({argv + (argc > 0 ? 1 : 0), argv + argc},
                                                  kestrel::command::WriteToStandardOutput);
  if (!ended.error.empty()) {
    std::fprintf(stderr, "%s\n", ended.error.c_str());
  }
  return ended.status;
}

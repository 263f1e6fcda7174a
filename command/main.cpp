#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>

#include "command/program.h"
#include "command/standard_output.h"
#include "command/terminal.h"

namespace {

int failure_status = kestrel::command::kFailure;

// Without an exception, there was no memory for one.
bool IsOutOfMemory(const std::exception_ptr& exception) {
  try {
    if (exception) {
      std::rethrow_exception(exception);
    }
    return true;
  } catch (const std::bad_alloc&) {
    return true;
  } catch (...) {
    return false;
  }
}

// What ends the program is a lack of memory, in the report of a failure or in the functions of
// CLI11 and nlohmann-json that allocate although they are noexcept; or a thread of the GPU runtime.
[[noreturn]] void EndProgram() {
  std::fputs(IsOutOfMemory(std::current_exception())
                 ? "kestrel: out of memory\n"
                 : "kestrel: the GPU runtime threw an exception\n",
             stderr);
  std::_Exit(failure_status);
}

}  // namespace

int main(int argc, char** argv) {
  const bool fits = argc > 1 && std::strcmp(argv[1], "fits") == 0;
  failure_status = kestrel::command::FailureStatus(fits);
  std::set_terminate(EndProgram);
  kestrel::command::PrepareStandardOutput();
  const auto ended = kestrel::command::RunProgram({argv + (argc > 0 ? 1 : 0), argv + argc},
                                                  kestrel::command::WriteToStandardOutput);
  if (!ended.error.empty()) {
    std::fprintf(stderr, "%s\n", ended.error.c_str());
  }
  return ended.status;
}

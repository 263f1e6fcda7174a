#include <cstdio>

#include "command/program.h"
#include "command/standard_output.h"
#include "command/terminal.h"

int main(int argc, char** argv) {
  kestrel::command::PrepareStandardOutput();
  const auto ended = kestrel::command::RunProgram({argv + (argc > 0 ? 1 : 0), argv + argc},
                                                  kestrel::command::WriteToStandardOutput);
  if (!ended.error.empty()) {
    std::fprintf(stderr, "%s\n", ended.error.c_str());
  }
  return ended.status;
}

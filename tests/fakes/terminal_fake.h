#pragma once

#include <functional>
#include <string>
#include <vector>

#include "command/terminal.h"

namespace kestrel::tests {

// What the functions of command/terminal.h return.
struct TerminalFake {
  bool is_terminal = true;
  bool shows_unicode = false;
  command::ScreenSize size{80, 24};
  bool is_stop_requested = false;  // until the process is stopped
  // Asked several times a second, with how often it was asked before: may change the terminal, and
  // returns whether the user interrupts.
  std::function<bool(int)> attend = [](int) { return false; };
  int attended = 0;

  std::vector<std::string> calls;
};

// The fake behind command/terminal.h. A test begins by assigning a new one.
TerminalFake& Terminal();

}  // namespace kestrel::tests

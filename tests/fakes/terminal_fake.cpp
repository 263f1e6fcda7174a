#include "tests/fakes/terminal_fake.h"

namespace kestrel::tests {

TerminalFake& Terminal() {
  static TerminalFake fake;
  return fake;
}

}  // namespace kestrel::tests

namespace kestrel::command {

using tests::Terminal;

void CatchInterrupts() { Terminal().calls.emplace_back("CatchInterrupts"); }

bool IsInterrupted() { return Terminal().attend(Terminal().attended++); }

bool IsTerminal() { return Terminal().is_terminal; }

bool ShowsUnicode() { return Terminal().shows_unicode; }

ScreenSize TerminalSize() { return Terminal().size; }

bool IsStopRequested() { return Terminal().is_stop_requested; }

void StopProcess() {
  Terminal().is_stop_requested = false;
  Terminal().calls.emplace_back("StopProcess");
}

LiveTerminal::LiveTerminal() { Terminal().calls.emplace_back("live"); }

LiveTerminal::~LiveTerminal() { Terminal().calls.emplace_back("no longer live"); }

}  // namespace kestrel::command

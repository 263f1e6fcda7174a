#pragma once

#include "command/watch_table.h"

// The terminal: defined once in command/linux and once in command/windows.

namespace kestrel::command {

// Standard output gets line feeds alone, as Prometheus demands, also on Windows. A reader that
// closes the pipe makes the next write fail instead of ending the process by a signal.
void PrepareStandardOutput();

// From here on, Ctrl-C and a request to end are noted instead of ending the process. On Linux, a
// second signal of the same kind ends it at once, and a signal that the process was started to
// ignore, as nohup does with SIGHUP, stays ignored.
void CatchInterrupts();
bool IsInterrupted();

// Whether standard output is a terminal that obeys the control sequences of ECMA-48.
bool IsTerminal();

// Whether the terminal shows UTF-8. On Windows, a LiveTerminal makes it do so.
bool ShowsUnicode();

// 80 columns and 24 rows if the terminal does not report its size.
ScreenSize TerminalSize();

// Whether Ctrl-Z was pressed while a LiveTerminal existed. Never on Windows.
bool IsStopRequested();

// Does what Ctrl-Z asks for; returns when the process is continued.
void StopProcess();

// As long as it exists, the control sequences are on, a request to stop (Ctrl-Z) is noted instead
// of stopping the process, and what is written to standard error, by a GPU runtime for instance, is
// kept back, so that it does not break the table. The destructor writes it. Where no file
// descriptor is left for that, it is not kept back. There is one at a time.
class LiveTerminal {
 public:
  LiveTerminal();
  LiveTerminal(const LiveTerminal&) = delete;
  LiveTerminal& operator=(const LiveTerminal&) = delete;
  ~LiveTerminal();

 private:
  void CloseFiles();

  int standard_error_ = -1;  // the file descriptor that it had
  int kept_back_ = -1;       // the file with what was written
  unsigned long mode_ = 0;   // that the console had
  unsigned code_page_ = 0;   // that the console had
};

}  // namespace kestrel::command

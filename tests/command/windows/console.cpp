// Prints the code page of its console's output while a live terminal exists, and after it.

#include <windows.h>

#include <cstdio>

#include "command/terminal.h"

int main() {
  SetConsoleOutputCP(850);
  unsigned within = 0;
  bool unicode = false;
  {
    const kestrel::command::LiveTerminal terminal;
    within = GetConsoleOutputCP();
    unicode = kestrel::command::ShowsUnicode();
  }
  std::printf("within %u %s\nafter %u\n", within, unicode ? "Unicode" : "none",
              GetConsoleOutputCP());
}

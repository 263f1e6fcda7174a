// The size and the features of the terminal, against references. Standard output is a pseudo
// terminal with the size of the input's first line, "COLUMNS ROWS"; the next lines are TERM,
// LC_ALL, LC_CTYPE and LANG, each not set if the line is missing.

#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

#include "command/terminal.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"

namespace kestrel::fuzz {

namespace {

// Makes standard output a terminal and returns its other end.
int MakeTerminal() {
  int controller = -1;
  int terminal = -1;
  Require(openpty(&controller, &terminal, nullptr, nullptr, nullptr) == 0 &&
              dup2(terminal, STDOUT_FILENO) == STDOUT_FILENO,
          "a terminal can be made");
  return controller;
}

void SetVariable(const char* name, const std::vector<std::string>& lines, std::size_t index) {
  if (index < lines.size()) {
    setenv(name, lines[index].c_str(), 1);
  } else {
    unsetenv(name);
  }
}

bool Contains(const std::string& text, const std::string& part) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.substr(i, part.size()) == part) {
      return true;
    }
  }
  return false;
}

// The input, in which a missing line counts as an empty one.
struct Description {
  std::uint64_t columns = 0;
  std::uint64_t rows = 0;
  std::string kind;
  std::string locale;  // of the first variable that is not empty
};

Description DescriptionOf(std::vector<std::string> lines) {
  lines.resize(5);
  std::vector<std::string> sides = Split(lines[0], ' ');
  sides.resize(2);
  Description description;
  description.columns = WholeNumber(sides[0]).value_or(0) % 65536;
  description.rows = WholeNumber(sides[1]).value_or(0) % 65536;
  description.kind = lines[1];
  for (std::size_t i = 5; i-- > 2;) {
    description.locale = lines[i].empty() ? description.locale : lines[i];
  }
  return description;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int controller = MakeTerminal();
  // Variables of the environment end with NUL, so that none has one.
  const std::string text = TextOf(data, size);
  const std::vector<std::string> lines = Split(text.substr(0, text.find('\0')), '\n');
  const Description description = DescriptionOf(lines);
  SetVariable("TERM", lines, 1);
  SetVariable("LC_ALL", lines, 2);
  SetVariable("LC_CTYPE", lines, 3);
  SetVariable("LANG", lines, 4);
  winsize window{};
  window.ws_col = static_cast<unsigned short>(description.columns);
  window.ws_row = static_cast<unsigned short>(description.rows);
  Require(ioctl(controller, TIOCSWINSZ, &window) == 0, "a terminal can have any size");

  Require(command::ShowsUnicode() ==
              (Contains(description.locale, "UTF-8") || Contains(description.locale, "utf8")),
          "the first variable that is not empty decides about UTF-8");
  Require(command::IsTerminal() == (!description.kind.empty() && description.kind != "dumb"),
          "a terminal without control sequences is none");
  const bool known = description.columns > 0 && description.rows > 0;
  const command::ScreenSize screen = command::TerminalSize();
  Require(screen.columns == (known ? description.columns : 80) &&
              screen.rows == (known ? description.rows : 24),
          "the size is that of the terminal");
  return 0;
}

}  // namespace kestrel::fuzz

#include "command/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace kestrel::command {

namespace {

volatile std::sig_atomic_t interrupted = 0;
volatile std::sig_atomic_t stop_requested = 0;

void NoteInterrupt(int /*signal*/) { interrupted = 1; }
void NoteStopRequest(int /*signal*/) { stop_requested = 1; }

// Calls that a signal interrupts go on: a line that is being written to a full pipe is not cut.
void Catch(int signal, void (*handler)(int), int flags) {
  struct sigaction inherited {};
  if (sigaction(signal, nullptr, &inherited) == 0 && inherited.sa_handler != SIG_IGN) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART | flags;
    sigaction(signal, &action, nullptr);
  }
}

}  // namespace

void PrepareStandardOutput() { std::signal(SIGPIPE, SIG_IGN); }

void CatchInterrupts() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    Catch(signal, NoteInterrupt, SA_RESETHAND);
  }
}

bool IsInterrupted() { return interrupted != 0; }

bool IsTerminal() {
  const char* const name = std::getenv("TERM");
  const std::string_view kind = name != nullptr ? name : "";
  return isatty(STDOUT_FILENO) == 1 && !kind.empty() && kind != "dumb";
}

// The first of these variables that is not empty decides (POSIX, "Environment Variables").
bool ShowsUnicode() {
  for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* const value = std::getenv(name);
    if (value != nullptr && *value != '\0') {
      const std::string_view locale = value;
      return locale.find("UTF-8") != std::string_view::npos ||
             locale.find("utf8") != std::string_view::npos;
    }
  }
  return false;
}

ScreenSize TerminalSize() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
    return {80, 24};
  }
  return {size.ws_col, size.ws_row};
}

bool IsStopRequested() { return stop_requested != 0; }

void StopProcess() {
  stop_requested = 0;
  struct sigaction ours {};
  struct sigaction stopping {};
  stopping.sa_handler = SIG_DFL;
  sigaction(SIGTSTP, &stopping, &ours);
  std::raise(SIGTSTP);
  sigaction(SIGTSTP, &ours, nullptr);
}

LiveTerminal::LiveTerminal() {
  Catch(SIGTSTP, NoteStopRequest, 0);
  std::FILE* const file = isatty(STDERR_FILENO) == 1 ? std::tmpfile() : nullptr;
  if (file != nullptr) {
    kept_back_ = dup(fileno(file));
    std::fclose(file);
    standard_error_ = dup(STDERR_FILENO);
    if (kept_back_ < 0 || standard_error_ < 0 || dup2(kept_back_, STDERR_FILENO) < 0) {
      CloseFiles();
    }
  }
}

LiveTerminal::~LiveTerminal() {
  Catch(SIGTSTP, SIG_DFL, 0);
  if (kept_back_ < 0) {
    return;
  }
  dup2(standard_error_, STDERR_FILENO);
  lseek(kept_back_, 0, SEEK_SET);
  std::array<char, 4096> buffer;
  ssize_t size = 0;
  while ((size = read(kept_back_, buffer.data(), buffer.size())) > 0 &&
         write(STDERR_FILENO, buffer.data(), static_cast<std::size_t>(size)) == size) {
  }
  CloseFiles();
}

void LiveTerminal::CloseFiles() {
  for (int* const file : {&kept_back_, &standard_error_}) {
    if (*file >= 0) {
      close(*file);
    }
    *file = -1;
  }
}

}  // namespace kestrel::command

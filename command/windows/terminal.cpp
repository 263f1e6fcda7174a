#include "command/terminal.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <array>
#include <atomic>
#include <cstdio>

namespace kestrel::command {

namespace {

std::atomic<bool> interrupted{false};

BOOL WINAPI NoteInterrupt(DWORD /*event*/) {
  interrupted = true;
  return TRUE;
}

HANDLE Console() { return GetStdHandle(STD_OUTPUT_HANDLE); }

constexpr int kStandardError = 2;

}  // namespace

// A closed pipe sends no signal here.
void PrepareStandardOutput() { _setmode(_fileno(stdout), _O_BINARY); }

void CatchInterrupts() { SetConsoleCtrlHandler(NoteInterrupt, TRUE); }

bool IsInterrupted() { return interrupted; }

// Consoles before Windows 10 refuse the mode.
bool IsTerminal() {
  DWORD mode = 0;
  if (GetConsoleMode(Console(), &mode) == 0) {
    return false;
  }
  const bool obeys = SetConsoleMode(Console(), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
  SetConsoleMode(Console(), mode);
  return obeys;
}

bool ShowsUnicode() { return GetConsoleOutputCP() == CP_UTF8; }

ScreenSize TerminalSize() {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (GetConsoleScreenBufferInfo(Console(), &info) == 0) {
    return {80, 24};
  }
  return {static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1),
          static_cast<std::size_t>(info.srWindow.Bottom - info.srWindow.Top + 1)};
}

bool IsStopRequested() { return false; }

void StopProcess() {}

LiveTerminal::LiveTerminal() {
  if (GetConsoleMode(Console(), &mode_) != 0) {
    SetConsoleMode(Console(), mode_ | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  }
  code_page_ = GetConsoleOutputCP();
  SetConsoleOutputCP(CP_UTF8);
  std::FILE* const file = _isatty(kStandardError) != 0 ? std::tmpfile() : nullptr;
  if (file != nullptr) {
    kept_back_ = _dup(_fileno(file));
    std::fclose(file);
    standard_error_ = _dup(kStandardError);
    if (kept_back_ < 0 || standard_error_ < 0 || _dup2(kept_back_, kStandardError) < 0) {
      CloseFiles();
    }
  }
}

LiveTerminal::~LiveTerminal() {
  if (mode_ != 0) {
    SetConsoleMode(Console(), mode_);
  }
  if (code_page_ != 0) {
    SetConsoleOutputCP(code_page_);
  }
  if (kept_back_ < 0) {
    return;
  }
  _dup2(standard_error_, kStandardError);
  _lseek(kept_back_, 0, SEEK_SET);
  std::array<char, 4096> buffer{};
  int size = 0;
  while ((size = _read(kept_back_, buffer.data(), static_cast<unsigned>(buffer.size()))) > 0 &&
         _write(kStandardError, buffer.data(), static_cast<unsigned>(size)) == size) {
  }
  CloseFiles();
}

void LiveTerminal::CloseFiles() {
  for (int* const file : {&kept_back_, &standard_error_}) {
    if (*file >= 0) {
      _close(*file);
    }
    *file = -1;
  }
}

}  // namespace kestrel::command

// Signals and standard streams belong to the whole process, so each test runs in one of its own.

#include "command/terminal.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "tests/platform/linux/child_process.h"

namespace kestrel::tests {
namespace {

void Require(bool condition, const char* what) {
  if (!condition) {
    throw std::runtime_error(what);
  }
}

void ExpectApart(const std::function<void()>& body) {
  const Outcome outcome = RunApart(body);
  EXPECT_TRUE(outcome.ran) << outcome.diagnostics;
}

// A pseudoterminal of which one of this process's descriptors is the end of the program.
class PseudoTerminal {
 public:
  PseudoTerminal(int descriptor, unsigned short columns, unsigned short rows) {
    const winsize size{rows, columns, 0, 0};
    int program = -1;
    Require(openpty(&user_, &program, nullptr, nullptr, &size) == 0, "openpty");
    dup2(program, descriptor);
    close(program);
  }

  // As many bytes as that, once they are there.
  [[nodiscard]] std::string Read(std::size_t size) const {
    std::string text(size, '\0');
    std::size_t count = 0;
    while (count < size) {
      const ssize_t more = read(user_, text.data() + count, size - count);
      Require(more > 0, "the terminal ended");
      count += static_cast<std::size_t>(more);
    }
    return text;
  }

 private:
  int user_ = -1;
};

auto OpenDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

ino_t StandardError() {
  struct stat status {};
  fstat(STDERR_FILENO, &status);
  return status.st_ino;
}

void WriteToStandardError(const std::string& text) {
  Require(write(STDERR_FILENO, text.data(), text.size()) == static_cast<ssize_t>(text.size()),
          "write");
}

TEST(TerminalTest, SignalsToEndAreNoted) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    ExpectApart([signal] {
      command::CatchInterrupts();
      Require(!command::IsInterrupted(), "interrupted before the signal");
      raise(signal);
      Require(command::IsInterrupted(), "not interrupted");
    });
  }
}

TEST(TerminalTest, SecondSignalToEndIsNotCaught) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    ExpectApart([signal] {
      command::CatchInterrupts();
      raise(signal);
      struct sigaction next {};
      sigaction(signal, nullptr, &next);
      Require(next.sa_handler == SIG_DFL, "caught");
    });
  }
}

TEST(TerminalTest, SignalsThatWereIgnoredStaySo) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    ExpectApart([signal] {
      std::signal(signal, SIG_IGN);
      command::CatchInterrupts();
      raise(signal);
      Require(!command::IsInterrupted(), "interrupted");
    });
  }
}

TEST(TerminalTest, PipeWithoutAReaderFailsInsteadOfEndingTheProcess) {
  ExpectApart([] {
    command::PrepareStandardOutput();
    std::array<int, 2> ends{};
    Require(pipe(ends.data()) == 0, "pipe");
    close(ends[0]);
    Require(write(ends[1], "x", 1) < 0 && errno == EPIPE, "written");
  });
}

TEST(TerminalTest, OutputToATerminalHasItsSize) {
  ExpectApart([] {
    const PseudoTerminal terminal(STDOUT_FILENO, 100, 30);
    setenv("TERM", "xterm", 1);
    Require(command::IsTerminal(), "no terminal");
    const auto size = command::TerminalSize();
    Require(size.columns == 100 && size.rows == 30, "another size");
  });
}

TEST(TerminalTest, TerminalThatDoesNotSayItsSizeHasTheUsualOne) {
  for (const auto& [columns, rows] : {std::pair{0, 30}, std::pair{100, 0}}) {
    ExpectApart([columns = columns, rows = rows] {
      const PseudoTerminal terminal(STDOUT_FILENO, static_cast<unsigned short>(columns),
                                    static_cast<unsigned short>(rows));
      const auto size = command::TerminalSize();
      Require(size.columns == 80 && size.rows == 24, "another size");
    });
  }
}

TEST(TerminalTest, TerminalWithoutControlSequencesIsNone) {
  ExpectApart([] {
    const PseudoTerminal terminal(STDOUT_FILENO, 100, 30);
    for (const char* const name : {"dumb", ""}) {
      setenv("TERM", name, 1);
      Require(!command::IsTerminal(), "a terminal");
    }
    unsetenv("TERM");
    Require(!command::IsTerminal(), "a terminal");
  });
}

TEST(TerminalTest, OutputToAPipeIsNoTerminal) {
  ExpectApart([] {
    setenv("TERM", "xterm", 1);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    Require(!command::IsTerminal(), "a terminal");
    const auto size = command::TerminalSize();
    Require(size.columns == 80 && size.rows == 24, "another size");
  });
}

struct Locale {
  const char* name;
  const char* all;
  const char* type;
  const char* lang;
  bool unicode;
};

// GoogleTest would print the bytes, and some of them are padding that is never set.
void PrintTo(const Locale& locale, std::ostream* stream) { *stream << locale.name; }

class ShowsUnicodeTest : public testing::TestWithParam<Locale> {};

TEST_P(ShowsUnicodeTest, FirstVariableThatIsNotEmptyDecides) {
  ExpectApart([] {
    const auto set = [](const char* name, const char* value) {
      value != nullptr ? setenv(name, value, 1) : unsetenv(name);
    };
    set("LC_ALL", GetParam().all);
    set("LC_CTYPE", GetParam().type);
    set("LANG", GetParam().lang);
    Require(command::ShowsUnicode() == GetParam().unicode, "otherwise");
  });
}

INSTANTIATE_TEST_SUITE_P(
    EachVariable, ShowsUnicodeTest,
    testing::Values(Locale{"NoneIsSet", nullptr, nullptr, nullptr, false},
                    Locale{"AllAreEmpty", "", "", "", false},
                    Locale{"Lang", nullptr, nullptr, "de_DE.UTF-8", true},
                    Locale{"LangInSmallLetters", nullptr, nullptr, "de_DE.utf8", true},
                    Locale{"LangOfLatin1", nullptr, nullptr, "de_DE", false},
                    Locale{"CharactersBeforeLang", nullptr, "C", "de_DE.UTF-8", false},
                    Locale{"CharactersAfterAll", "", "C.UTF-8", "C", true},
                    Locale{"AllBeforeTheOthers", "C", "C.UTF-8", "C.UTF-8", false},
                    Locale{"All", "C.UTF-8", nullptr, nullptr, true}),
    [](const auto& test) { return std::string(test.param.name); });

// More than the reader's buffer takes at once.
TEST(LiveTerminalTest, WhatIsWrittenToStandardErrorAppearsAfterwards) {
  ExpectApart([] {
    const PseudoTerminal terminal(STDERR_FILENO, 80, 24);
    const auto descriptors = OpenDescriptors();
    const std::string kept_back(5000, 'k');
    std::string seen;
    std::thread user([&] { seen = terminal.Read(kept_back.size() + 2); });
    {
      const command::LiveTerminal live;
      WriteToStandardError(kept_back);
      Require(isatty(STDERR_FILENO) == 0, "still the terminal");
    }
    WriteToStandardError("ab");
    user.join();
    Require(seen == kept_back + "ab", "not as written");
    Require(OpenDescriptors() == descriptors, "descriptors are left open");
  });
}

TEST(LiveTerminalTest, WithoutDescriptorsStandardErrorStaysTheTerminal) {
  for (const unsigned left : {0U, 1U}) {
    ExpectApart([left] {
      const PseudoTerminal terminal(STDERR_FILENO, 80, 24);
      LeaveDescriptors(left);
      {
        const command::LiveTerminal live;
        Require(isatty(STDERR_FILENO) == 1, "no longer the terminal");
      }
      Require(isatty(STDERR_FILENO) == 1, "no longer the terminal afterwards");
      const int next = dup(STDOUT_FILENO);
      Require((next >= 0) == (left == 1), "a descriptor is left open");
    });
  }
}

TEST(LiveTerminalTest, StandardErrorThatIsNoTerminalIsLeftAlone) {
  ExpectApart([] {
    const auto descriptors = OpenDescriptors();
    const auto error = StandardError();
    {
      const command::LiveTerminal live;
      Require(StandardError() == error, "another file");
      Require(OpenDescriptors() == descriptors, "a file was opened");
    }
    Require(StandardError() == error, "another file afterwards");
  });
}

}  // namespace
}  // namespace kestrel::tests

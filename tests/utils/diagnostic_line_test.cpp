#include "utils/diagnostic_line.h"

#include <gtest/gtest.h>

#include <limits>
#include <locale>
#include <string>

#include "tests/fakes/cerr_recorder.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::DiagnosticLine;

TEST(DiagnosticLineTest, GoesOutWholeInOneWriteWithOneFlush) {
  const CerrRecorder cerr;
  (DiagnosticLine{} << "pid " << 12 << " is gone").EndLine();
  EXPECT_EQ(cerr.writes(), std::vector<std::string>{"pid 12 is gone\n"});
  EXPECT_EQ(cerr.flushes(), 1);
}

TEST(DiagnosticLineTest, WriteNeitherEndsTheLineNorFlushes) {
  const CerrRecorder cerr;
  (DiagnosticLine{} << "as it stands").Write();
  EXPECT_EQ(cerr.writes(), std::vector<std::string>{"as it stands"});
  EXPECT_EQ(cerr.flushes(), 0);
}

TEST(DiagnosticLineTest, WritesEveryInt) {
  const CerrRecorder cerr;
  (DiagnosticLine{} << std::numeric_limits<int>::min() << " " << std::numeric_limits<int>::max()
                    << " " << 0)
      .EndLine();
  EXPECT_EQ(cerr.text(), "-2147483648 2147483647 0\n");
}

TEST(DiagnosticLineTest, IgnoresTheFormatOfTheHostsStream) {
  struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale before = std::cerr.imbue(std::locale(std::locale(), new Grouping));
  const CerrRecorder cerr;
  std::cerr << std::hex << std::showpos;
  std::cerr.width(40);
  (DiagnosticLine{} << 1234567).EndLine();
  std::cerr.width(0);
  std::cerr.imbue(before);
  EXPECT_EQ(cerr.text(), "1234567\n");
}

TEST(DiagnosticLineTest, ALongLineLosesNothing) {
  const CerrRecorder cerr;
  const std::string text(2000, 'x');
  (DiagnosticLine{} << "begin " << text << 42).EndLine();
  EXPECT_EQ(cerr.text(), "begin " + text + "42\n");
}

TEST(DiagnosticLineTest, ALineOfTheBuffersOwnSizeLosesNothing) {
  for (std::size_t size = 510; size <= 514; ++size) {
    const CerrRecorder cerr;
    (DiagnosticLine{} << std::string(size, 'x')).EndLine();
    EXPECT_EQ(cerr.text(), std::string(size, 'x') + "\n");
  }
}

TEST(DiagnosticLineTest, DoesNotThrowWhereTheHostsStreamDoes) {
  CerrRecorder cerr;
  cerr.Throw();
  EXPECT_NO_THROW((DiagnosticLine{} << "lost").EndLine());
  EXPECT_EQ(cerr.refused(), 1);
  EXPECT_EQ(cerr.text(), "");
}

TEST(DiagnosticLineTest, DoesNotThrowWhereTheHostsStreamHasNoBuffer) {
  std::streambuf* const before = std::cerr.rdbuf(nullptr);
  EXPECT_NO_THROW((DiagnosticLine{} << "lost").EndLine());
  std::cerr.rdbuf(before);
}

}  // namespace
}  // namespace kestrel::tests

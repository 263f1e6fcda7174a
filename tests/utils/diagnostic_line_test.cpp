#include "utils/diagnostic_line.h"

#include <gtest/gtest.h>

#include <limits>
#include <locale>
#include <sstream>
#include <string>

#include "tests/fakes/cerr_recorder.h"
#include "tests/fakes/sink_recorder.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::DiagnosticLine;
using kestrel_utils::kStandardError;

TEST(DiagnosticLineTest, EndedLineIsWrittenOnceAndFlushedOnce) {
  const CerrRecorder cerr;
  (DiagnosticLine(kStandardError) << "pid " << 12 << " is gone").EndLine();
  EXPECT_EQ(cerr.writes(), std::vector<std::string>{"pid 12 is gone\n"});
  EXPECT_EQ(cerr.flushes(), 1);
}

TEST(DiagnosticLineTest, WriteNeitherEndsTheLineNorFlushes) {
  const CerrRecorder cerr;
  (DiagnosticLine(kStandardError) << "as it is").Write();
  EXPECT_EQ(cerr.writes(), std::vector<std::string>{"as it is"});
  EXPECT_EQ(cerr.flushes(), 0);
}

TEST(DiagnosticLineTest, SmallestAndLargestIntAreWrittenWhole) {
  const CerrRecorder cerr;
  (DiagnosticLine(kStandardError) << std::numeric_limits<int>::min() << " "
                                  << std::numeric_limits<int>::max() << " " << 0)
      .EndLine();
  EXPECT_EQ(cerr.text(), "-2147483648 2147483647 0\n");
}

TEST(DiagnosticLineTest, FormatOfTheHostsStreamIsIgnored) {
  struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale before = std::cerr.imbue(std::locale(std::locale(), new Grouping));
  const CerrRecorder cerr;
  std::cerr << std::hex << std::showpos;
  std::cerr.width(40);
  (DiagnosticLine(kStandardError) << 1234567).EndLine();
  std::cerr.width(0);
  std::cerr.imbue(before);
  EXPECT_EQ(cerr.text(), "1234567\n");
}

TEST(DiagnosticLineTest, LineLongerThanTheBufferIsWrittenWhole) {
  const CerrRecorder cerr;
  const std::string text(2000, 'x');
  (DiagnosticLine(kStandardError) << "begin " << text << 42).EndLine();
  EXPECT_EQ(cerr.text(), "begin " + text + "42\n");
  EXPECT_EQ(cerr.flushes(), 1);
}

TEST(DiagnosticLineTest, LineAsLongAsTheBufferIsWrittenWhole) {
  for (std::size_t size = 510; size <= 514; ++size) {
    const CerrRecorder cerr;
    (DiagnosticLine(kStandardError) << std::string(size, 'x')).EndLine();
    EXPECT_EQ(cerr.text(), std::string(size, 'x') + "\n");
  }
}

TEST(DiagnosticLineTest, AnotherSinkGetsTheLineInsteadOfStandardError) {
  const CerrRecorder cerr;
  SinkRecorder recorder;
  (DiagnosticLine(recorder.sink()) << "pid " << 12).EndLine();
  (DiagnosticLine(recorder.sink()) << "as it is").Write();
  EXPECT_EQ(recorder.text(), "pid 12\n|as it is");
  EXPECT_EQ(cerr.text(), "");
}

TEST(DiagnosticLineTest, UnitBufferedStreamIsFlushedAfterEveryWrite) {
  const CerrRecorder cerr;
  std::cerr.setf(std::ios::unitbuf);
  (DiagnosticLine(kStandardError) << "as it is").Write();
  EXPECT_EQ(cerr.flushes(), 1);
}

// Output through std::cerr would flush std::cout, which is tied to it.
TEST(DiagnosticLineTest, TiedStreamIsNotFlushed) {
  struct FlushCounter : std::stringbuf {
    int sync() override {
      ++flushes;
      return 0;
    }
    int flushes = 0;
  };
  const CerrRecorder cerr;
  FlushCounter host;
  std::streambuf* const before = std::cout.rdbuf(&host);
  (DiagnosticLine(kStandardError) << "pid " << 12).EndLine();
  (DiagnosticLine(kStandardError) << "as it is").Write();
  std::cout.rdbuf(before);
  EXPECT_EQ(std::cerr.tie(), &std::cout);
  EXPECT_EQ(host.flushes, 0);
}

TEST(DiagnosticLineTest, RefusedWriteLeavesTheStreamGood) {
  CerrRecorder cerr;
  cerr.Refuse();
  (DiagnosticLine(kStandardError) << "lost").EndLine();
  EXPECT_EQ(cerr.failed_writes(), 1);
  EXPECT_TRUE(std::cerr.good());
}

// An earlier output error of the host does not silence the meters.
TEST(DiagnosticLineTest, StreamInErrorStateGetsTheLineAndKeepsItsState) {
  const CerrRecorder cerr;
  std::cerr.setstate(std::ios::failbit);
  (DiagnosticLine(kStandardError) << "written").EndLine();
  EXPECT_EQ(cerr.text(), "written\n");
  EXPECT_EQ(std::cerr.rdstate(), std::ios::failbit);
}

TEST(DiagnosticLineTest, ThrowingBufferLosesTheLineOnly) {
  CerrRecorder cerr;
  std::cerr.exceptions(std::ios::badbit | std::ios::failbit);
  cerr.Throw();
  EXPECT_NO_THROW((DiagnosticLine(kStandardError) << "lost").EndLine());
  EXPECT_EQ(cerr.failed_writes(), 1);
  EXPECT_TRUE(std::cerr.good());
}

TEST(DiagnosticLineTest, StreamWithoutBufferLosesTheLineOnly) {
  std::streambuf* const before = std::cerr.rdbuf(nullptr);
  EXPECT_NO_THROW((DiagnosticLine(kStandardError) << "lost").EndLine());
  std::cerr.rdbuf(before);
}

}  // namespace
}  // namespace kestrel::tests

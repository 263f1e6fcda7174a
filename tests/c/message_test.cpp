#include "c/message.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/fakes/cerr_recorder.h"

namespace kestrel::tests {
namespace {

using c::Message;
using kestrel_utils::DiagnosticLine;

class MessageTest : public testing::Test {
 protected:
  kestrel_result result_{};
  CerrRecorder cerr_;
};

TEST_F(MessageTest, WithoutADiagnosticTheOtherTextIsUsed) {
  Message message(&result_);
  EXPECT_FALSE(message.IsReported());
  EXPECT_STREQ(message.TextOr("other"), "other");
}

TEST_F(MessageTest, LinesAreKeptWithoutTheLastNewline) {
  Message message(&result_);
  (DiagnosticLine(message.Sink()) << "one").EndLine();
  (DiagnosticLine(message.Sink()) << "two").EndLine();
  EXPECT_TRUE(message.IsReported());
  EXPECT_STREQ(message.TextOr("other"), "one\ntwo");
  EXPECT_EQ(cerr_.text(), "");
}

TEST_F(MessageTest, OfATextThatIsTooLongTheBeginningIsKept) {
  Message message(&result_);
  (DiagnosticLine(message.Sink()) << "first " << std::string(3000, 'x')).EndLine();
  (DiagnosticLine(message.Sink()) << "second").EndLine();
  EXPECT_EQ(message.TextOr("other"), "first " + std::string(KESTREL_MESSAGE_SIZE - 7, 'x'));
}

TEST_F(MessageTest, WithoutAResultTheLineIsWrittenToStandardError) {
  Message message(nullptr);
  (DiagnosticLine(message.Sink()) << "one").EndLine();
  EXPECT_TRUE(message.IsReported());
  EXPECT_EQ(cerr_.text(), "one\n");
  EXPECT_STREQ(message.TextOr("other"), "other");
}

}  // namespace
}  // namespace kestrel::tests

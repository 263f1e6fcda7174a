#include "hip_binding/windows/text.h"

#include <gtest/gtest.h>

#include <string>

namespace kestrel::tests {
namespace {

using hip_binding::ReasonText;
using hip_binding::SetReason;
using hip_binding::SetUtf8;

constexpr const wchar_t* kEuro = L"\u20AC";  // three bytes in UTF-8

std::wstring Euros(int count) {
  std::wstring text;
  for (int i = 0; i < count; ++i) {
    text += kEuro;
  }
  return text;
}

TEST(TextTest, TextOfAnErrorIsItsReason) {
  ReasonText reason;
  SetReason(126, L"Module not found \u20AC.", reason);
  EXPECT_STREQ(reason.data(), "Module not found \xE2\x82\xAC.");
}

// FormatMessageW gives a blank in the place of the line break at the end.
TEST(TextTest, ReasonHasNoBlankAtItsEnd) {
  ReasonText reason;
  SetReason(126, L"Module not found. ", reason);
  EXPECT_STREQ(reason.data(), "Module not found.");
  SetReason(126, L" ", reason);
  EXPECT_STREQ(reason.data(), "");
}

TEST(TextTest, ErrorWithoutTextHasItsNumberForReason) {
  ReasonText reason;
  SetReason(126, nullptr, reason);
  EXPECT_STREQ(reason.data(), "Windows error 126");
}

TEST(TextTest, LongestTextThatFitsIsTheReason) {
  ReasonText reason;
  SetReason(126, Euros(85).c_str(), reason);
  EXPECT_EQ(std::string(reason.data()).size(), reason.size() - 1);
}

TEST(TextTest, ErrorWithATextThatIsTooLongInUtf8HasItsNumberForReason) {
  ReasonText reason;
  SetReason(126, Euros(86).c_str(), reason);
  EXPECT_STREQ(reason.data(), "Windows error 126");
}

TEST(TextTest, TextThatDoesNotFitIsLeftEmpty) {
  char text[4] = "old";
  EXPECT_FALSE(SetUtf8(L"longer", text, sizeof(text)));
  EXPECT_STREQ(text, "");
  EXPECT_TRUE(SetUtf8(L"abc", text, sizeof(text)));
  EXPECT_STREQ(text, "abc");
}

}  // namespace
}  // namespace kestrel::tests

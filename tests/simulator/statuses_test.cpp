#include "simulator/statuses.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace kestrel::tests {

namespace {

using simulator::StatusName;
using simulator::StatusNamed;
using simulator::StatusText;

// Returns the enumerators of hipError_t in the installed header, by value.
std::map<int, std::set<std::string>> StatusesOfTheHeader() {
  std::ifstream file(HIP_HEADER);
  std::string text{std::istreambuf_iterator<char>(file), {}};
  const std::size_t end = text.find("} hipError_t;");
  const std::size_t begin = text.rfind("typedef enum", end);
  if (end == std::string::npos || begin == std::string::npos) {
    return {};
  }
  text = std::regex_replace(text.substr(begin, end - begin), std::regex("//[^\n]*"), "");
  std::map<int, std::set<std::string>> statuses;
  const std::regex enumerator("(hip[A-Za-z0-9]+)\\s*=\\s*([0-9]+)");
  for (std::sregex_iterator match(text.begin(), text.end(), enumerator), last; match != last;
       ++match) {
    statuses[std::stoi((*match)[2])].insert((*match)[1]);
  }
  return statuses;
}

TEST(StatusesTest, EveryStatusOfTheHeaderIsNamed) {
  const auto statuses = StatusesOfTheHeader();
  ASSERT_GE(statuses.size(), 70U) << "the header was not understood";
  for (const auto& [value, names] : statuses) {
    bool is_named = false;
    for (const std::string& name : names) {
      const auto status = StatusNamed(name);
      is_named |= status.has_value() && static_cast<int>(*status) == value;
    }
    EXPECT_TRUE(is_named) << value << " is " << *names.begin();
  }
}

TEST(StatusesTest, NameAndTextDescribeTheStatus) {
  EXPECT_STREQ(StatusName(hipErrorNoDevice), "hipErrorNoDevice");
  EXPECT_STREQ(StatusText(hipErrorNoDevice), "no ROCm-capable device is detected");
  EXPECT_STREQ(StatusName(hipSuccess), "hipSuccess");
  EXPECT_STREQ(StatusText(hipSuccess), "no error");
}

TEST(StatusesTest, ValueThatIsNoStatusIsUnknown) {
  for (const int value : {10, 800, 2000}) {
    EXPECT_STREQ(StatusName(static_cast<hipError_t>(value)), "hipErrorUnknown");
    EXPECT_STREQ(StatusText(static_cast<hipError_t>(value)), "unknown error");
  }
}

TEST(StatusesTest, StatusThatTheRuntimesDoNotNameHasAValueOnly) {
  EXPECT_EQ(StatusNamed("hipErrorInvalidTexture"), static_cast<hipError_t>(912));
  EXPECT_EQ(StatusNamed("hipErrorInvalidChannelDescriptor"), static_cast<hipError_t>(911));
  EXPECT_STREQ(StatusName(static_cast<hipError_t>(912)), "hipErrorUnknown");
}

TEST(StatusesTest, UnknownNameHasNoStatus) {
  EXPECT_EQ(StatusNamed("hipErrorBroken"), std::nullopt);
  EXPECT_EQ(StatusNamed(""), std::nullopt);
}

}  // namespace

}  // namespace kestrel::tests

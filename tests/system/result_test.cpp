#include "system/result.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

namespace kestrel::tests {
namespace {

using system::Result;
using system::ResultCode;

TEST(ResultTest, DefaultIsUnknownWithoutMessage) {
  const Result result;
  EXPECT_EQ(result.code, ResultCode::Unknown);
  EXPECT_EQ(result.message, "");
}

TEST(ResultTest, CodesHaveFixedNumbers) {
  static_assert(std::is_same_v<std::underlying_type_t<ResultCode>, std::int32_t>);
  EXPECT_EQ(static_cast<int>(ResultCode::Unknown), 0);
  EXPECT_EQ(static_cast<int>(ResultCode::Success), 1);
  EXPECT_EQ(static_cast<int>(ResultCode::Failure), 2);
  EXPECT_EQ(static_cast<int>(ResultCode::NoDevices), 3);
  EXPECT_EQ(static_cast<int>(ResultCode::DeviceQueryFailed), 4);
}

TEST(ResultTest, ChangedCopyLeavesSourceUnchanged) {
  const Result source{ResultCode::Failure, "why"};
  Result copy = source;
  copy.code = ResultCode::Success;
  copy.message += " not";
  EXPECT_EQ(source.code, ResultCode::Failure);
  EXPECT_EQ(source.message, "why");
}

TEST(ResultTest, MovedFromResultCanBeAssigned) {
  Result source{ResultCode::NoDevices, "a text too long for the string's own small buffer"};
  const Result taken = std::move(source);
  EXPECT_EQ(taken.message, "a text too long for the string's own small buffer");
  source = Result{ResultCode::Success, "again"};
  EXPECT_EQ(source.code, ResultCode::Success);
  EXPECT_EQ(source.message, "again");
}

}  // namespace
}  // namespace kestrel::tests

#include "c/call.h"

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "tests/c/records.h"

namespace kestrel::tests {
namespace {

using c::Guarded;
using c::Report;

class CallTest : public testing::Test {
 protected:
  kestrel_result result_ = NewRecord<kestrel_result>();
};

TEST_F(CallTest, ReportWritesStatusAndMessage) {
  EXPECT_EQ(Report(&result_, KESTREL_NO_DEVICES, "none"), KESTREL_NO_DEVICES);
  EXPECT_EQ(result_.struct_size, sizeof(kestrel_result));
  EXPECT_EQ(result_.status, KESTREL_NO_DEVICES);
  EXPECT_STREQ(result_.message, "none");
}

TEST_F(CallTest, ReportWithoutAResultReturnsTheStatus) {
  EXPECT_EQ(Report(nullptr, KESTREL_NO_DEVICES, "none"), KESTREL_NO_DEVICES);
}

TEST_F(CallTest, MessageThatIsTooLongIsCut) {
  Report(&result_, KESTREL_NO_DEVICES, std::string(2000, 'x').c_str());
  EXPECT_EQ(result_.message, std::string(KESTREL_MESSAGE_SIZE - 1, 'x'));
}

TEST_F(CallTest, ShorterMessageReplacesTheLongerOneBefore) {
  Report(&result_, KESTREL_NO_DEVICES, "a long message");
  Report(&result_, KESTREL_OK, "");
  EXPECT_STREQ(result_.message, "");
}

TEST_F(CallTest, GuardedReturnsWhatTheCallReturns) {
  EXPECT_EQ(Guarded(&result_, [] { return kestrel_status{KESTREL_NO_DEVICES}; }),
            KESTREL_NO_DEVICES);
}

TEST_F(CallTest, BadAllocIsOutOfMemory) {
  EXPECT_EQ(Guarded(&result_, []() -> kestrel_status { throw std::bad_alloc(); }),
            KESTREL_OUT_OF_MEMORY);
  EXPECT_STREQ(result_.message, "Out of memory");
}

TEST_F(CallTest, AnyOtherExceptionIsAFailureOfTheRuntime) {
  EXPECT_EQ(Guarded(&result_, []() -> kestrel_status { throw 42; }), KESTREL_RUNTIME_FAILED);
  EXPECT_STREQ(result_.message, "The GPU runtime threw an exception");
}

TEST_F(CallTest, CallDoesNotBeginWithAResultOfNoSize) {
  kestrel_result unset{};
  bool called = false;
  const auto call = [&called] {
    called = true;
    return kestrel_status{KESTREL_OK};
  };
  EXPECT_EQ(Guarded(&unset, call), KESTREL_INVALID_ARGUMENT);
  EXPECT_FALSE(called);
  EXPECT_EQ(unset.status, KESTREL_OK);
}

}  // namespace
}  // namespace kestrel::tests

#include "simulator/device_properties.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "simulator/control.h"

namespace kestrel::tests {

namespace {

using simulator::GetDeviceProperties;
using simulator::Install;
using simulator::PropertiesR0000;
using simulator::PropertiesR0600;
using simulator::RecordedCalls;

template <typename Record>
class DevicePropertiesTest : public testing::Test {
 protected:
  void TearDown() override { Install({}); }

  // Every byte set, so that a field that is not written shows.
  static Record FilledRecord() {
    Record record;
    std::memset(&record, 7, sizeof record);
    return record;
  }
};

using Records = testing::Types<PropertiesR0000, PropertiesR0600>;

class RecordNames {
 public:
  template <typename Record>
  static std::string GetName(int /*index*/) {
    return sizeof(Record) == sizeof(PropertiesR0000) ? "R0000" : "R0600";
  }
};

TYPED_TEST_SUITE(DevicePropertiesTest, Records, RecordNames);

TYPED_TEST(DevicePropertiesTest, DescribedFieldsAreThoseOfTheMachine) {
  Install({{{"a card", "gfx1100", 0, 10, 5, 7}, {"an APU", "gfx1103", 1, 20, 30, 40}}, {}, {}});
  TypeParam record = this->FilledRecord();
  ASSERT_EQ(GetDeviceProperties(&record, 1), 0);
  EXPECT_STREQ(record.name, "an APU");
  EXPECT_STREQ(record.arch, "gfx1103");
  EXPECT_EQ(record.integrated, 1);
  EXPECT_EQ(record.total_global_memory, 40U);
}

TYPED_TEST(DevicePropertiesTest, OtherFieldsAreZero) {
  Install({{{"", "", 0, 0, 0, 0}}, {}, {}});
  TypeParam record = this->FilledRecord();
  ASSERT_EQ(GetDeviceProperties(&record, 0), 0);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(&record), sizeof record),
            std::string(sizeof record, '\0'));
}

TYPED_TEST(DevicePropertiesTest, LongTextFillsItsFieldAlone) {
  Install({{{std::string(300, 'n'), std::string(256, 'a'), 0, 1, 1, 1}}, {}, {}});
  TypeParam record = this->FilledRecord();
  ASSERT_EQ(GetDeviceProperties(&record, 0), 0);
  EXPECT_EQ(std::string(record.name, sizeof record.name), std::string(256, 'n'));
  EXPECT_EQ(std::string(record.arch, sizeof record.arch), std::string(256, 'a'));
  EXPECT_EQ(record.total_global_memory, 1U);
  EXPECT_EQ(record.integrated, 0);
}

TYPED_TEST(DevicePropertiesTest, FaultIsGivenByTheOldestName) {
  Install({{{"a card", "gfx1100", 0, 10, 5, 7}},
           {},
           {{"hipGetDeviceProperties", 0, {}, hipErrorNotReady}}});
  TypeParam record = this->FilledRecord();
  const TypeParam before = record;
  EXPECT_EQ(GetDeviceProperties(&record, 0), hipErrorNotReady);
  EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0) << "a failing call writes nothing";
  EXPECT_EQ(RecordedCalls(), std::vector<std::string>{"hipGetDeviceProperties(0)"});
}

}  // namespace

}  // namespace kestrel::tests

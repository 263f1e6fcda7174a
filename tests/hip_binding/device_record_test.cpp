#include "hip_binding/device_record.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>

#include "tests/fakes/runtime_library_fake.h"

namespace kestrel::tests {
namespace {

using hip_binding::DeviceRecord;
using hip_binding::FillRecord;
using hip_binding::kRecordOfHip5;
using hip_binding::kRecordOfHip6;
using hip_binding::RecordOf;

constexpr int kInvalidDevice = 101;     // hipErrorInvalidDevice
constexpr std::uint8_t kUntouched = 7;  // what outputs hold before the call
constexpr std::uint8_t kNoise = 0xAA;   // in fields that the library does not read

const std::size_t kMemory = (std::size_t{24} << 30) + 1;

template <const DeviceRecord& kRecord>
int FillAsRuntime(void* output, int device) {
  if (device != 3) {
    return kInvalidDevice;
  }
  auto* const bytes = static_cast<std::uint8_t*>(output);
  std::memset(bytes, kNoise, kRecord.size);
  std::memset(bytes + kRecord.name, 'n', 256);  // fills the field, without a NUL
  std::memcpy(bytes + kRecord.total_global_mem, &kMemory, sizeof(kMemory));
  const int integrated = -2;
  std::memcpy(bytes + kRecord.integrated, &integrated, sizeof(integrated));
  std::memcpy(bytes + kRecord.gcn_arch_name, "gfx1102", 8);
  return 0;
}

RuntimeFake RuntimeOfHip5() {
  return {{"hipGetDeviceProperties", FunctionOf(FillAsRuntime<kRecordOfHip5>)}};
}

RuntimeFake RuntimeOfHip6() {
  RuntimeFake runtime = RuntimeOfHip5();
  runtime["hipGetDevicePropertiesR0600"] = FunctionOf(FillAsRuntime<kRecordOfHip6>);
  return runtime;
}

struct Conversion {
  const char* name;
  RuntimeFake runtime;
  const DeviceRecord* wanted;
};

void PrintTo(const Conversion& conversion, std::ostream* stream) { *stream << conversion.name; }

class ConversionTest : public testing::TestWithParam<Conversion> {
 protected:
  ConversionTest() { output_.fill(kUntouched); }

  template <typename Field>
  [[nodiscard]] Field At(std::size_t offset) const {
    Field field;
    std::memcpy(&field, output_.data() + offset, sizeof(field));
    return field;
  }

  RuntimeFake runtime_ = GetParam().runtime;
  const DeviceRecord& wanted_ = *GetParam().wanted;
  std::array<std::uint8_t, 2048> output_{};
};

TEST_P(ConversionTest, FieldsOfTheRuntimeAreWhereTheCallerReadsThem) {
  ASSERT_EQ(FillRecord(&runtime_, wanted_, output_.data(), 3), 0);
  using Text = std::array<char, 256>;
  const auto name = At<Text>(wanted_.name);
  EXPECT_EQ(std::string(name.begin(), name.end()), std::string(256, 'n'));
  EXPECT_STREQ(At<Text>(wanted_.gcn_arch_name).data(), "gfx1102");
  EXPECT_EQ(At<std::size_t>(wanted_.total_global_mem), kMemory);
  EXPECT_EQ(At<int>(wanted_.integrated), -2);
}

TEST_P(ConversionTest, OtherFieldsAreZeroAndNoByteBeyondTheRecordIsWritten) {
  ASSERT_EQ(FillRecord(&runtime_, wanted_, output_.data(), 3), 0);
  EXPECT_EQ(At<int>(wanted_.total_global_mem + sizeof(std::size_t)), 0);
  EXPECT_EQ(output_[wanted_.size - 1], 0);
  EXPECT_TRUE(std::all_of(output_.begin() + static_cast<std::ptrdiff_t>(wanted_.size),
                          output_.end(), [](std::uint8_t byte) { return byte == kUntouched; }));
}

TEST_P(ConversionTest, FailureReturnsTheStatusAndWritesNothing) {
  EXPECT_EQ(FillRecord(&runtime_, wanted_, output_.data(), 4), kInvalidDevice);
  EXPECT_TRUE(std::all_of(output_.begin(), output_.end(),
                          [](std::uint8_t byte) { return byte == kUntouched; }));
}

INSTANTIATE_TEST_SUITE_P(EachPair, ConversionTest,
                         testing::Values(Conversion{"Hip5ToHip5", RuntimeOfHip5(), &kRecordOfHip5},
                                         Conversion{"Hip5ToHip6", RuntimeOfHip5(), &kRecordOfHip6},
                                         Conversion{"Hip6ToHip5", RuntimeOfHip6(), &kRecordOfHip5},
                                         Conversion{"Hip6ToHip6", RuntimeOfHip6(), &kRecordOfHip6}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(DeviceRecordTest, NewFunctionIsPreferredWhereARuntimeHasBoth) {
  RuntimeFake runtime = RuntimeOfHip6();
  EXPECT_EQ(RecordOf(&runtime), &kRecordOfHip6);
}

TEST(DeviceRecordTest, OldFunctionIsUsedWhereARuntimeHasNoOther) {
  RuntimeFake runtime = RuntimeOfHip5();
  EXPECT_EQ(RecordOf(&runtime), &kRecordOfHip5);
}

TEST(DeviceRecordTest, RuntimeWithoutEitherFunctionHasNoRecord) {
  RuntimeFake runtime;
  EXPECT_EQ(RecordOf(&runtime), nullptr);
}

// A later runtime may fill a longer record under the same name.
TEST(DeviceRecordTest, LongerRecordOfALaterRuntimeFitsTheBuffer) {
  const auto fill = [](void* output, int) {
    std::memset(output, kNoise, 2 * kRecordOfHip6.size);
    return 0;
  };
  RuntimeFake runtime = {{"hipGetDevicePropertiesR0600", FunctionOf(+fill)}};
  std::array<std::uint8_t, 2048> output{};
  EXPECT_EQ(FillRecord(&runtime, kRecordOfHip6, output.data(), 0), 0);
  EXPECT_EQ(output[0], kNoise);
}

}  // namespace
}  // namespace kestrel::tests

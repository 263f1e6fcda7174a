// The names of the C interface are those of the C++ interface, for numbers outside the enumerations
// too.

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <unordered_set>

#include "c/kestrelcore.h"
#include "system/cpu_info.h"
#include "system/gpu_info.h"

namespace kestrel::tests {
namespace {

using system::CpuArchitecture;
using system::CpuInstructionSetExtension;
using system::GpuIntegrationType;
using system::GpuSoftwarePlatform;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

std::set<std::int32_t> NumbersToTry() {
  std::set<std::int32_t> numbers = {kLowest, kHighest};
  for (std::int32_t number = -3; number < 12; ++number) {
    numbers.insert(number);
  }
  return numbers;
}

TEST(NamesTest, ArchitectureNamesEqualThoseOfTheCppInterface) {
  for (const std::int32_t number : NumbersToTry()) {
    EXPECT_EQ(kestrel_cpu_architecture_name(number),
              system::CpuArchitectureToStr(static_cast<CpuArchitecture>(number)));
  }
}

TEST(NamesTest, ExtensionNamesEqualThoseOfTheCppInterface) {
  for (const std::int32_t number : {0, 1, 2, 3, 4}) {
    EXPECT_EQ(
        kestrel_cpu_extension_name(std::uint32_t{1} << static_cast<std::uint32_t>(number)),
        system::CpuInstructionSetExtensionToStr(static_cast<CpuInstructionSetExtension>(number)));
  }
}

TEST(NamesTest, JoinedExtensionNamesEqualThoseOfTheCppInterface) {
  for (std::uint32_t bits = 0; bits < 8; ++bits) {
    std::unordered_set<CpuInstructionSetExtension> extensions;
    for (const std::uint32_t number : {0U, 1U, 2U}) {
      if ((bits >> number & 1U) != 0) {
        extensions.insert(static_cast<CpuInstructionSetExtension>(number));
      }
    }
    EXPECT_EQ(kestrel_cpu_extension_names(bits),
              system::CpuInstructionSetExtensionsToStr(extensions));
  }
}

TEST(NamesTest, BitsThatAreNoExtensionAreIgnored) {
  EXPECT_STREQ(kestrel_cpu_extension_names(0xFFFFFFF8U), "");
  EXPECT_STREQ(kestrel_cpu_extension_names(0xFFFFFFF9U), "AVX");
}

TEST(NamesTest, IntegrationNamesEqualThoseOfTheCppInterface) {
  for (const std::int32_t number : NumbersToTry()) {
    EXPECT_EQ(kestrel_gpu_integration_name(number),
              system::GpuIntegrationTypeToStr(static_cast<GpuIntegrationType>(number)));
  }
}

TEST(NamesTest, PlatformNamesEqualThoseOfTheCppInterface) {
  for (const std::int32_t number : NumbersToTry()) {
    EXPECT_EQ(kestrel_gpu_platform_name(number),
              system::GpuSoftwarePlatformToStr(static_cast<GpuSoftwarePlatform>(number)));
  }
}

TEST(NamesTest, EveryStatusIsNamedAsInTheHeader) {
  const std::map<kestrel_status, std::string> names = {
      {KESTREL_OK, "KESTREL_OK"},
      {KESTREL_INVALID_ARGUMENT, "KESTREL_INVALID_ARGUMENT"},
      {KESTREL_CAPACITY_TOO_SMALL, "KESTREL_CAPACITY_TOO_SMALL"},
      {KESTREL_OUT_OF_MEMORY, "KESTREL_OUT_OF_MEMORY"},
      {KESTREL_PROCESSOR_UNSUPPORTED, "KESTREL_PROCESSOR_UNSUPPORTED"},
      {KESTREL_ARCHITECTURE_UNSUPPORTED, "KESTREL_ARCHITECTURE_UNSUPPORTED"},
      {KESTREL_NO_DEVICES, "KESTREL_NO_DEVICES"},
      {KESTREL_DEVICE_QUERY_FAILED, "KESTREL_DEVICE_QUERY_FAILED"},
      {KESTREL_PROCESS_QUERY_FAILED, "KESTREL_PROCESS_QUERY_FAILED"},
      {KESTREL_MEMORY_QUERY_FAILED, "KESTREL_MEMORY_QUERY_FAILED"},
      {KESTREL_RUNTIME_FAILED, "KESTREL_RUNTIME_FAILED"},
  };
  for (const auto& [status, name] : names) {
    EXPECT_EQ(kestrel_status_name(status), name);
  }
}

TEST(NamesTest, NumberThatIsNoStatusIsUnknown) {
  for (const kestrel_status status : {-1, KESTREL_RUNTIME_FAILED + 1, kLowest, kHighest}) {
    EXPECT_STREQ(kestrel_status_name(status), "KESTREL_STATUS_UNKNOWN");
  }
}

TEST(NamesTest, VersionTextHoldsTheThreeNumbersOfTheVersion) {
  const std::uint32_t version = kestrel_version();
  EXPECT_EQ(version, static_cast<std::uint32_t>(KESTREL_VERSION));
  EXPECT_EQ(kestrel_version_text(), std::to_string(version >> 16) + "." +
                                        std::to_string(version >> 8 & 255U) + "." +
                                        std::to_string(version & 255U));
}

}  // namespace
}  // namespace kestrel::tests

#include "system/gpu_info.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

namespace kestrel::tests {
namespace {

using system::GpuInfo;
using system::GpuIntegrationType;
using system::GpuIntegrationTypeToStr;
using system::GpuSoftwarePlatform;
using system::GpuSoftwarePlatformToStr;

GpuInfo Card() {
  GpuInfo gpu;
  gpu.name = "A card whose name is too long for a small string";
  gpu.deviceId = 3;
  gpu.totalMemory = 17163091968;
  gpu.dedicatedMemory = 5;
  gpu.integrationType = GpuIntegrationType::Discrete;
  gpu.detectionPlatform = GpuSoftwarePlatform::ROCm;
  gpu.detectionPlatformVersion = "5.2";
  gpu.otherInfo = {{"gcnArchName", "gfx1030"}, {"bus", "0000:03:00.0"}};
  return gpu;
}

void ExpectCard(const GpuInfo& gpu) {
  EXPECT_EQ(gpu.name, "A card whose name is too long for a small string");
  EXPECT_EQ(gpu.deviceId, 3);
  EXPECT_EQ(gpu.totalMemory, 17163091968U);
  EXPECT_EQ(gpu.dedicatedMemory, 5U);
  EXPECT_EQ(gpu.integrationType, GpuIntegrationType::Discrete);
  EXPECT_EQ(gpu.detectionPlatform, GpuSoftwarePlatform::ROCm);
  EXPECT_EQ(gpu.detectionPlatformVersion, "5.2");
  EXPECT_EQ(gpu.otherInfo.size(), 2U);
  EXPECT_EQ(gpu.otherInfo.at("gcnArchName"), "gfx1030");
  EXPECT_EQ(gpu.otherInfo.at("bus"), "0000:03:00.0");
}

TEST(GpuIntegrationTypeTest, EnumeratorsHaveFixedNumbers) {
  static_assert(std::is_same_v<std::underlying_type_t<GpuIntegrationType>, std::int32_t>);
  EXPECT_EQ(static_cast<int>(GpuIntegrationType::Unknown), 0);
  EXPECT_EQ(static_cast<int>(GpuIntegrationType::Integrated), 1);
  EXPECT_EQ(static_cast<int>(GpuIntegrationType::Discrete), 2);
}

TEST(GpuIntegrationTypeTest, EnumeratorsHaveFixedNames) {
  EXPECT_EQ(GpuIntegrationTypeToStr(GpuIntegrationType::Unknown), "Unknown");
  EXPECT_EQ(GpuIntegrationTypeToStr(GpuIntegrationType::Integrated), "Integrated");
  EXPECT_EQ(GpuIntegrationTypeToStr(GpuIntegrationType::Discrete), "Discrete");
}

TEST(GpuIntegrationTypeTest, ValueOutsideTheEnumerationIsNamedUnknown) {
  EXPECT_EQ(GpuIntegrationTypeToStr(static_cast<GpuIntegrationType>(3)), "Unknown");
  EXPECT_EQ(GpuIntegrationTypeToStr(static_cast<GpuIntegrationType>(-1)), "Unknown");
}

TEST(GpuSoftwarePlatformTest, EnumeratorsHaveFixedNumbersAndNames) {
  static_assert(std::is_same_v<std::underlying_type_t<GpuSoftwarePlatform>, std::int32_t>);
  const char* const names[] = {"Unknown", "ROCm", "Cuda", "OpenCl", "Metal", "DirectML", "Vulkan"};
  for (int value = 0; value < 7; ++value) {
    EXPECT_EQ(GpuSoftwarePlatformToStr(static_cast<GpuSoftwarePlatform>(value)), names[value]);
  }
  EXPECT_EQ(static_cast<int>(GpuSoftwarePlatform::Unknown), 0);
  EXPECT_EQ(static_cast<int>(GpuSoftwarePlatform::ROCm), 1);
  EXPECT_EQ(static_cast<int>(GpuSoftwarePlatform::Cuda), 2);
  EXPECT_EQ(static_cast<int>(GpuSoftwarePlatform::OpenCl), 3);
  EXPECT_EQ(static_cast<int>(GpuSoftwarePlatform::Metal), 4);
  EXPECT_EQ(static_cast<int>(GpuSoftwarePlatform::DirectML), 5);
  EXPECT_EQ(static_cast<int>(GpuSoftwarePlatform::Vulkan), 6);
}

TEST(GpuSoftwarePlatformTest, ValueOutsideTheEnumerationIsNamedUnknown) {
  EXPECT_EQ(GpuSoftwarePlatformToStr(static_cast<GpuSoftwarePlatform>(7)), "Unknown");
  EXPECT_EQ(GpuSoftwarePlatformToStr(static_cast<GpuSoftwarePlatform>(-1)), "Unknown");
}

TEST(GpuInfoTest, DefaultIsUnknownAndEmpty) {
  const GpuInfo gpu;
  EXPECT_EQ(gpu.name, "");
  EXPECT_EQ(gpu.deviceId, -1);
  EXPECT_EQ(gpu.totalMemory, 0U);
  EXPECT_EQ(gpu.dedicatedMemory, 0U);
  EXPECT_EQ(GpuIntegrationTypeToStr(gpu.integrationType), "Unknown");
  EXPECT_EQ(GpuSoftwarePlatformToStr(gpu.detectionPlatform), "Unknown");
  EXPECT_EQ(gpu.detectionPlatformVersion, "");
  EXPECT_TRUE(gpu.otherInfo.empty());
}

TEST(GpuInfoTest, ChangedCopyLeavesSourceUnchanged) {
  const GpuInfo source = Card();
  GpuInfo copy = source;
  copy.otherInfo["gcnArchName"] = "changed";
  copy.otherInfo.erase("bus");
  ExpectCard(source);
  GpuInfo assigned;
  assigned = source;
  ExpectCard(assigned);
  assigned.otherInfo.clear();
  ExpectCard(source);
}

TEST(GpuInfoTest, MoveKeepsEveryField) {
  static_assert(std::is_nothrow_move_constructible_v<GpuInfo>);
  static_assert(std::is_nothrow_move_assignable_v<GpuInfo>);
  GpuInfo source = Card();
  GpuInfo moved = std::move(source);
  ExpectCard(moved);
  GpuInfo assigned;
  assigned = std::move(moved);
  ExpectCard(assigned);
}

}  // namespace
}  // namespace kestrel::tests

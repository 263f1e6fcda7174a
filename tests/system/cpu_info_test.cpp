#include "system/cpu_info.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

namespace kestrel::tests {
namespace {

using system::CpuArchitecture;
using system::CpuArchitectureToStr;
using system::CpuInfo;
using system::CpuInstructionSetExtension;
using system::CpuInstructionSetExtensionsToStr;
using system::CpuInstructionSetExtensionToStr;
using Extension = CpuInstructionSetExtension;
using Extensions = std::unordered_set<Extension>;

CpuInfo Both() {
  CpuInfo info;
  info.architecture = CpuArchitecture::x86_64;
  info.supportedInstructionSetExtensions = {Extension::AVX, Extension::AVX2};
  return info;
}

void ExpectBoth(const CpuInfo& info) {
  EXPECT_EQ(info.architecture, CpuArchitecture::x86_64);
  EXPECT_EQ(info.supportedInstructionSetExtensions, (Extensions{Extension::AVX, Extension::AVX2}));
}

TEST(CpuInfoTest, MoveAssignmentTakesTheElementsThemselves) {
  CpuInfo source = Both();
  const Extension* const element = &*source.supportedInstructionSetExtensions.begin();
  CpuInfo info;
  info = std::move(source);
  EXPECT_EQ(&*info.supportedInstructionSetExtensions.begin(), element);
}

TEST(CpuArchitectureTest, EnumeratorsHaveFixedNumbers) {
  static_assert(std::is_same_v<std::underlying_type_t<CpuArchitecture>, std::int32_t>);
  EXPECT_EQ(static_cast<int>(CpuArchitecture::x86_64), 0);
  EXPECT_EQ(static_cast<int>(CpuArchitecture::ARM64), 1);
  EXPECT_EQ(static_cast<int>(CpuArchitecture::Unknown), 2);
}

TEST(CpuArchitectureTest, EnumeratorsHaveFixedNames) {
  EXPECT_EQ(CpuArchitectureToStr(CpuArchitecture::x86_64), "x86_64");
  EXPECT_EQ(CpuArchitectureToStr(CpuArchitecture::ARM64), "ARM64");
  EXPECT_EQ(CpuArchitectureToStr(CpuArchitecture::Unknown), "Unknown");
}

TEST(CpuArchitectureTest, ValueOutsideTheEnumerationIsNamedX8664) {
  EXPECT_EQ(CpuArchitectureToStr(static_cast<CpuArchitecture>(3)), "x86_64");
  EXPECT_EQ(CpuArchitectureToStr(static_cast<CpuArchitecture>(7)), "x86_64");
  EXPECT_EQ(CpuArchitectureToStr(static_cast<CpuArchitecture>(-1)), "x86_64");
}

TEST(CpuInstructionSetExtensionTest, EnumeratorsHaveFixedNumbers) {
  static_assert(std::is_same_v<std::underlying_type_t<Extension>, std::int32_t>);
  EXPECT_EQ(static_cast<int>(Extension::AVX), 0);
  EXPECT_EQ(static_cast<int>(Extension::AVX2), 1);
  EXPECT_EQ(static_cast<int>(Extension::AdvSIMD), 2);
}

TEST(CpuInstructionSetExtensionTest, EnumeratorsHaveFixedNames) {
  EXPECT_EQ(CpuInstructionSetExtensionToStr(Extension::AVX), "AVX");
  EXPECT_EQ(CpuInstructionSetExtensionToStr(Extension::AVX2), "AVX2");
  EXPECT_EQ(CpuInstructionSetExtensionToStr(Extension::AdvSIMD), "AdvSIMD");
}

TEST(CpuInstructionSetExtensionTest, ValueOutsideTheEnumerationIsNamedAvx) {
  EXPECT_EQ(CpuInstructionSetExtensionToStr(static_cast<Extension>(3)), "AVX");
  EXPECT_EQ(CpuInstructionSetExtensionToStr(static_cast<Extension>(-1)), "AVX");
}

TEST(CpuInstructionSetExtensionsTest, EmptySetReturnsEmptyText) {
  EXPECT_EQ(CpuInstructionSetExtensionsToStr({}), "");
}

TEST(CpuInstructionSetExtensionsTest, SingleElementHasNoSeparator) {
  EXPECT_EQ(CpuInstructionSetExtensionsToStr({Extension::AVX2}), "AVX2");
  EXPECT_EQ(CpuInstructionSetExtensionsToStr({Extension::AdvSIMD}), "AdvSIMD");
}

TEST(CpuInstructionSetExtensionsTest, TwoElementsAreJoinedByCommaAndBlank) {
  EXPECT_EQ(CpuInstructionSetExtensionsToStr({Extension::AVX, Extension::AVX2}), "AVX, AVX2");
}

TEST(CpuInstructionSetExtensionsTest, AnyOrderOfInsertionReturnsAscendingOrder) {
  Extensions backwards;
  backwards.insert(Extension::AdvSIMD);
  backwards.insert(Extension::AVX2);
  backwards.insert(Extension::AVX);
  EXPECT_EQ(CpuInstructionSetExtensionsToStr(backwards), "AVX, AVX2, AdvSIMD");
}

TEST(CpuInstructionSetExtensionsTest, ValueOutsideTheEnumerationIsSortedByValueAndNamedAvx) {
  EXPECT_EQ(CpuInstructionSetExtensionsToStr({static_cast<Extension>(9), Extension::AVX2}),
            "AVX2, AVX");
}

TEST(CpuInfoTest, DefaultIsUnknownAndEmpty) {
  const CpuInfo info;
  EXPECT_EQ(info.architecture, CpuArchitecture::Unknown);
  EXPECT_TRUE(info.supportedInstructionSetExtensions.empty());
  EXPECT_EQ(CpuArchitectureToStr(info.architecture), "Unknown");
}

TEST(CpuInfoTest, ChangedCopyLeavesSourceUnchanged) {
  const CpuInfo source = Both();
  CpuInfo copy = source;
  copy.supportedInstructionSetExtensions.insert(Extension::AdvSIMD);
  ExpectBoth(source);
  CpuInfo assigned;
  assigned = source;
  assigned.supportedInstructionSetExtensions.clear();
  ExpectBoth(source);
}

TEST(CpuInfoTest, MoveKeepsEveryField) {
  static_assert(std::is_nothrow_move_constructible_v<CpuInfo>);
  static_assert(std::is_nothrow_move_assignable_v<CpuInfo>);
  CpuInfo source = Both();
  CpuInfo moved = std::move(source);
  ExpectBoth(moved);
  CpuInfo assigned;
  assigned = std::move(moved);
  ExpectBoth(assigned);
}

TEST(CpuInfoTest, SelfAssignmentChangesNothing) {
  CpuInfo info = Both();
  CpuInfo& same = info;
  info = same;
  ExpectBoth(info);
  info = std::move(same);
  ExpectBoth(info);
}

}  // namespace
}  // namespace kestrel::tests

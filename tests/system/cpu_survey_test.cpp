#include "system/cpu_survey.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "system/detect_cpu_info.h"
#include "tests/fakes/platform_fake.h"

namespace kestrel::tests {
namespace {

using system::CpuArchitecture;
using system::CpuInstructionSetExtension;
using system::CpuInstructionSetExtensionsToStr;
using system::DetectCpuInfo;
using system::ResultCode;
using system::SurveyCpu;
using Extension = CpuInstructionSetExtension;
using Extensions = std::unordered_set<Extension>;

constexpr std::uint32_t kOsxsave = 0x08000000;  // CPUID leaf 1, ECX bit 27
constexpr std::uint32_t kAvx = 0x10000000;      // bit 28

class CpuSurveyTest : public testing::Test {
 protected:
  CpuSurveyTest() { Platform() = {}; }

  static void SetLeaves(platform::CpuidRegisters leaf1, platform::CpuidRegisters leaf7) {
    Platform().cpuid = {{{1, 0}, leaf1}, {{7, 0}, leaf7}};
  }

  static void ExpectX8664With(const Extensions& extensions) {
    const auto [result, info] = SurveyCpu();
    EXPECT_EQ(result.code, ResultCode::Success);
    EXPECT_EQ(result.message, "");
    EXPECT_EQ(info.architecture, CpuArchitecture::x86_64);
    EXPECT_EQ(info.supportedInstructionSetExtensions, extensions);
  }

  static void ExpectUnsupported(std::uint16_t architecture) {
    Platform().architecture = architecture;
    const auto [result, info] = SurveyCpu();
    EXPECT_EQ(result.code, ResultCode::Failure);
    EXPECT_EQ(result.message, "Unsupported processor architecture");
    EXPECT_EQ(info.architecture, CpuArchitecture::Unknown);
    EXPECT_TRUE(info.supportedInstructionSetExtensions.empty());
  }
};

// Intel Core i7-6500U (family 6, model 4Eh): CPUID dump in the InstLatx64 collection, 000406E3.
TEST_F(CpuSurveyTest, SkylakeHasAvxAndAvx2) {
  SetLeaves({0x000406E3, 0x00100800, 0x7FFAFBBF, 0xBFEBFBFF}, {0, 0x029C67AF, 0, 0});
  ExpectX8664With({Extension::AVX, Extension::AVX2});
  EXPECT_EQ(CpuInstructionSetExtensionsToStr(SurveyCpu().second.supportedInstructionSetExtensions),
            "AVX, AVX2");
}

// AMD EPYC 7003 (family 19h, model 1) inside a KVM guest: cpuid(1) run there.
TEST_F(CpuSurveyTest, MilanGuestHasAvxAndAvx2) {
  SetLeaves({0x00A00F11, 0x01020800, 0xFFFA3203, 0x178BFBFF}, {0, 0x219C07AB, 0x00400684, 0x10});
  ExpectX8664With({Extension::AVX, Extension::AVX2});
}

// Intel Sandy Bridge (family 6, model 2Ah): InstLatx64, 000206A6.
TEST_F(CpuSurveyTest, SandyBridgeHasAvxOnly) {
  SetLeaves({0x000206A6, 0x00100800, 0x1F9AE3BF, 0xBFEBFBFF}, {0, 0, 0, 0});
  ExpectX8664With({Extension::AVX});
}

// AMD Llano (family 12h, model 1): InstLatx64, 00300F10. Its highest leaf is 6.
TEST_F(CpuSurveyTest, LlanoHasNeither) {
  SetLeaves({0x00300F10, 0x00040800, 0x00802009, 0x178BFBFF}, {0, 0, 0, 0});
  ExpectX8664With({});
}

// CPUID under "qemu-x86_64 -cpu Haswell,-avx": a virtual machine can hide one of the two flags.
TEST_F(CpuSurveyTest, HaswellWithAvxHiddenHasAvx2Only) {
  SetLeaves({0x000306C4, 0x00000800, 0xEED83203, 0x078BFBFD}, {0, 0x000003A9, 0, 0});
  ExpectX8664With({Extension::AVX2});
}

// The Sandy Bridge above under a system that has not enabled the wide registers.
TEST_F(CpuSurveyTest, SandyBridgeWithWideRegistersDisabledStillHasAvx) {
  SetLeaves({0x000206A6, 0x00100800, 0x1F9AE3BF & ~kOsxsave, 0xBFEBFBFF}, {0, 0, 0, 0});
  ExpectX8664With({Extension::AVX});
}

TEST_F(CpuSurveyTest, AllOtherFlagsSetReportNoExtension) {
  const std::uint32_t all = 0xFFFFFFFF;
  SetLeaves({all, all, all & ~kAvx, all}, {all, all & ~0x20U, all, all});
  ExpectX8664With({});
}

TEST_F(CpuSurveyTest, SurveyReadsArchitectureThenLeaf1ThenLeaf7) {
  static_cast<void>(SurveyCpu());
  EXPECT_EQ(Platform().calls,
            (std::vector<std::string>{"ProcessorArchitecture()", "Cpuid(1, 0)", "Cpuid(7, 0)"}));
}

TEST_F(CpuSurveyTest, ChangedProcessorShowsAtTheNextCall) {
  SetLeaves({0, 0, kAvx, 0}, {});
  ExpectX8664With({Extension::AVX});
  SetLeaves({}, {0, 0x20, 0, 0});
  ExpectX8664With({Extension::AVX2});
}

TEST_F(CpuSurveyTest, Arm64IsNamedAndProbed) {
  SetLeaves({0, 0, kAvx, 0}, {});
  Platform().architecture = 12;
  const auto [result, info] = SurveyCpu();
  EXPECT_EQ(result.code, ResultCode::Success);
  EXPECT_EQ(info.architecture, CpuArchitecture::ARM64);
  EXPECT_EQ(info.supportedInstructionSetExtensions, Extensions{Extension::AVX});
}

TEST_F(CpuSurveyTest, Arm32CountsAsArm64AndIsProbed) {
  SetLeaves({0, 0, kAvx, 0}, {0, 0x20, 0, 0});
  Platform().architecture = 5;
  const auto [result, info] = SurveyCpu();
  EXPECT_EQ(result.code, ResultCode::Success);
  EXPECT_EQ(info.architecture, CpuArchitecture::ARM64);
  EXPECT_EQ(info.supportedInstructionSetExtensions, (Extensions{Extension::AVX, Extension::AVX2}));
}

TEST_F(CpuSurveyTest, Intel32IsUnsupported) { ExpectUnsupported(0); }
TEST_F(CpuSurveyTest, ItaniumIsUnsupported) { ExpectUnsupported(6); }
TEST_F(CpuSurveyTest, UnknownArchitectureIsUnsupported) { ExpectUnsupported(0xFFFF); }

TEST_F(CpuSurveyTest, UnsupportedArchitectureIsNotProbed) {
  ExpectUnsupported(0);
  EXPECT_EQ(Platform().calls, std::vector<std::string>{"ProcessorArchitecture()"});
}

TEST_F(CpuSurveyTest, UnsupportedArchitectureMakesDetectionThrowRuntimeError) {
  Platform().architecture = 0;
  try {
    static_cast<void>(DetectCpuInfo());
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Unsupported processor architecture");
  }
}

}  // namespace
}  // namespace kestrel::tests

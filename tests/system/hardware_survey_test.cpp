#include "system/hardware_survey.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "simulator/control.h"
#include "tests/fakes/platform_fake.h"

namespace kestrel::tests {
namespace {

using system::CpuArchitecture;
using system::CpuInfo;
using system::CpuInstructionSetExtension;
using system::GpuInfo;
using system::HardwareSurveyResult;
using system::ResultCode;
using system::SurveyHardware;

HardwareSurveyResult Filled() {
  HardwareSurveyResult survey;
  GpuInfo gpu;
  gpu.name = "A card whose name is too long for a small string";
  survey.gpuSurvey = {{ResultCode::Success, ""}, {gpu}};
  CpuInfo cpu;
  cpu.architecture = CpuArchitecture::x86_64;
  cpu.supportedInstructionSetExtensions = {CpuInstructionSetExtension::AVX};
  survey.cpuSurvey = {{ResultCode::Success, "a message too long for a small string"}, cpu};
  return survey;
}

void ExpectFilled(const HardwareSurveyResult& survey) {
  EXPECT_EQ(survey.gpuSurvey.first.code, ResultCode::Success);
  ASSERT_EQ(survey.gpuSurvey.second.size(), 1U);
  EXPECT_EQ(survey.gpuSurvey.second[0].name, "A card whose name is too long for a small string");
  EXPECT_EQ(survey.cpuSurvey.first.message, "a message too long for a small string");
  EXPECT_EQ(survey.cpuSurvey.second.architecture, CpuArchitecture::x86_64);
  EXPECT_EQ(survey.cpuSurvey.second.supportedInstructionSetExtensions.size(), 1U);
}

void ExpectDefault(const HardwareSurveyResult& survey) {
  EXPECT_EQ(survey.gpuSurvey.first.code, ResultCode::Unknown);
  EXPECT_EQ(survey.gpuSurvey.first.message, "");
  EXPECT_TRUE(survey.gpuSurvey.second.empty());
  EXPECT_EQ(survey.cpuSurvey.first.code, ResultCode::Unknown);
  EXPECT_EQ(survey.cpuSurvey.first.message, "");
  EXPECT_EQ(survey.cpuSurvey.second.architecture, CpuArchitecture::Unknown);
  EXPECT_TRUE(survey.cpuSurvey.second.supportedInstructionSetExtensions.empty());
}

TEST(HardwareSurveyResultTest, DefaultIsUnknownAndEmpty) { ExpectDefault(HardwareSurveyResult{}); }

TEST(HardwareSurveyResultTest, CopyMoveAndSelfAssignmentOfDefaultStayDefault) {
  HardwareSurveyResult survey;
  HardwareSurveyResult copy = survey;
  ExpectDefault(copy);
  ExpectDefault(std::move(copy));
  HardwareSurveyResult& same = survey;
  survey = same;
  survey = std::move(same);
  ExpectDefault(survey);
}

TEST(HardwareSurveyResultTest, ChangedCopyLeavesSourceUnchanged) {
  const HardwareSurveyResult source = Filled();
  HardwareSurveyResult copy = source;
  copy.gpuSurvey.second.clear();
  copy.cpuSurvey.second.supportedInstructionSetExtensions.clear();
  ExpectFilled(source);
  copy = source;
  ExpectFilled(copy);
}

TEST(HardwareSurveyResultTest, MoveKeepsEveryField) {
  static_assert(std::is_nothrow_move_constructible_v<HardwareSurveyResult>);
  static_assert(std::is_nothrow_move_assignable_v<HardwareSurveyResult>);
  HardwareSurveyResult source = Filled();
  HardwareSurveyResult moved = std::move(source);
  ExpectFilled(moved);
  HardwareSurveyResult assigned;
  assigned = std::move(moved);
  ExpectFilled(assigned);
}

TEST(HardwareSurveyResultTest, SelfAssignmentChangesNothing) {
  HardwareSurveyResult survey = Filled();
  HardwareSurveyResult& same = survey;
  survey = same;
  ExpectFilled(survey);
  survey = std::move(same);
  ExpectFilled(survey);
}

class HardwareSurveyTest : public testing::Test {
 protected:
  HardwareSurveyTest() { Platform() = {}; }

  static void InstallTwoCards() {
    simulator::Machine machine;
    machine.devices.resize(2);
    simulator::Install(machine);
  }
};

TEST_F(HardwareSurveyTest, WorkingMachineReturnsTwoSuccesses) {
  InstallTwoCards();
  const HardwareSurveyResult survey = SurveyHardware();
  EXPECT_EQ(survey.gpuSurvey.first.code, ResultCode::Success);
  EXPECT_EQ(survey.gpuSurvey.first.message, "");
  EXPECT_EQ(survey.gpuSurvey.second.size(), 2U);
  EXPECT_EQ(survey.cpuSurvey.first.code, ResultCode::Success);
  EXPECT_EQ(survey.cpuSurvey.first.message, "");
  EXPECT_EQ(survey.cpuSurvey.second.architecture, CpuArchitecture::x86_64);
}

TEST_F(HardwareSurveyTest, FailedGpuSurveyKeepsCpuSurvey) {
  simulator::Install({});
  const HardwareSurveyResult survey = SurveyHardware();
  EXPECT_EQ(survey.gpuSurvey.first.code, ResultCode::NoDevices);
  EXPECT_EQ(survey.gpuSurvey.first.message,
            "Error trying to query ROCm gpus: No hip devices found!");
  EXPECT_TRUE(survey.gpuSurvey.second.empty());
  EXPECT_EQ(survey.cpuSurvey.first.code, ResultCode::Success);
  EXPECT_EQ(survey.cpuSurvey.second.architecture, CpuArchitecture::x86_64);
}

TEST_F(HardwareSurveyTest, FailureAfterGoodDeviceReturnsEmptyList) {
  simulator::Machine machine;
  machine.devices.resize(3);
  machine.faults = {{"hipSetDevice", 2, {}, hipErrorUnknown}};
  simulator::Install(machine);
  const HardwareSurveyResult survey = SurveyHardware();
  EXPECT_EQ(survey.gpuSurvey.first.code, ResultCode::DeviceQueryFailed);
  EXPECT_TRUE(survey.gpuSurvey.second.empty());
}

TEST_F(HardwareSurveyTest, FailedCpuSurveyKeepsGpuSurvey) {
  InstallTwoCards();
  Platform().architecture = 0;
  const HardwareSurveyResult survey = SurveyHardware();
  EXPECT_EQ(survey.cpuSurvey.first.code, ResultCode::Failure);
  EXPECT_EQ(survey.cpuSurvey.first.message, "Unsupported processor architecture");
  EXPECT_EQ(survey.cpuSurvey.second.architecture, CpuArchitecture::Unknown);
  EXPECT_TRUE(survey.cpuSurvey.second.supportedInstructionSetExtensions.empty());
  EXPECT_EQ(survey.gpuSurvey.first.code, ResultCode::Success);
  EXPECT_EQ(survey.gpuSurvey.second.size(), 2U);
}

}  // namespace
}  // namespace kestrel::tests

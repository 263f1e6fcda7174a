#include "command/machine_survey.h"

#include <gtest/gtest.h>

#include "tests/command/machine.h"

namespace kestrel::tests {
namespace {

class MachineSurveyTest : public testing::Test {
 protected:
  simulator::Machine machine_ = InstallMachine();
};

TEST_F(MachineSurveyTest, EveryPartIsRead) {
  const auto survey = command::SurveyMachine();
  EXPECT_TRUE(command::IsComplete(survey));
  EXPECT_EQ(survey.architecture, "x86_64");
  EXPECT_EQ(survey.extensions, (std::vector<std::string>{"AVX", "AVX2"}));
  ASSERT_EQ(survey.gpus.size(), 2U);
  EXPECT_EQ(survey.gpus[1].device, 1);
  EXPECT_EQ(survey.gpus[1].name, "Graphics");
  EXPECT_EQ(survey.gpus[1].architecture, "gfx1103");
  EXPECT_EQ(survey.gpus[1].integration, "Integrated");
  EXPECT_EQ(survey.gpus[1].total_bytes, 4 * kGiB);
  EXPECT_EQ(survey.gpus[1].free_bytes, 3 * kGiB);
  EXPECT_EQ(survey.memory.physical_bytes, 16 * kGiB);
  EXPECT_EQ(survey.memory.available_bytes, 6 * kGiB);
  EXPECT_EQ(survey.memory.committable_bytes, 2 * kGiB);
  EXPECT_EQ(survey.memory.limit, KESTREL_LIMIT_MACHINE);
  EXPECT_EQ(survey.memory.limit_group, "");
  for (const auto& part : {survey.processor, survey.gpu_part, survey.memory.part}) {
    EXPECT_EQ(part.status, KESTREL_OK);
    EXPECT_EQ(part.message, "");
  }
  EXPECT_EQ(survey.gpus[1].platform, "ROCm");
  EXPECT_EQ(survey.gpus[0].integration, "Discrete");
}

TEST_F(MachineSurveyTest, TextsThatAreNotPrintableAreMadeSo) {
  machine_.devices[0].name = "a\nb\xFF";
  machine_.devices[0].arch = "gfx\x1B";
  simulator::Install(machine_);
  Platform().memory.limit = platform::MemoryLimit::kMemoryGroup;
  Platform().group_directory = "/box\n";
  const auto survey = command::SurveyMachine();
  EXPECT_EQ(survey.gpus[0].name, "a b\xEF\xBF\xBD");
  EXPECT_EQ(survey.gpus[0].architecture, "gfx ");
  EXPECT_EQ(survey.memory.limit_group, "/box ");
}

TEST_F(MachineSurveyTest, ProcessorThatIsNotSupportedMakesItIncomplete) {
  Platform().architecture = 0;  // 32-bit x86
  const auto survey = command::SurveyMachine();
  EXPECT_EQ(survey.processor.status, KESTREL_ARCHITECTURE_UNSUPPORTED);
  EXPECT_NE(survey.processor.message, "");
  EXPECT_TRUE(survey.extensions.empty());
  EXPECT_FALSE(command::IsComplete(survey));
}

TEST_F(MachineSurveyTest, PhysicalMemoryThatCannotBeReadMakesItIncomplete) {
  Platform().Fail("QueryTotalPhysicalMemory");
  const auto survey = command::SurveyMachine();
  EXPECT_EQ(survey.memory.part.status, KESTREL_MEMORY_QUERY_FAILED);
  EXPECT_EQ(survey.memory.part.message, "Failed to get global memory status.");
  EXPECT_EQ(survey.memory.available_bytes, 0U);
}

TEST_F(MachineSurveyTest, NumberOfGpusIsKnownUnlessTheyCannotBeRead) {
  command::MachineSurvey survey;
  EXPECT_TRUE(command::AreGpusCounted(survey));
  survey.gpu_part.status = KESTREL_NO_DEVICES;
  EXPECT_TRUE(command::AreGpusCounted(survey));
  survey.gpu_part.status = KESTREL_DEVICE_QUERY_FAILED;
  EXPECT_FALSE(command::AreGpusCounted(survey));
}

TEST_F(MachineSurveyTest, MoreGpusThanAMachineUsuallyHasAreAllRead) {
  machine_.devices.resize(40, machine_.devices[0]);
  simulator::Install(machine_);
  EXPECT_EQ(command::SurveyMachine().gpus.size(), 40U);
}

TEST_F(MachineSurveyTest, MachineWithoutGpuIsComplete) {
  simulator::Install({});
  const auto survey = command::SurveyMachine();
  EXPECT_EQ(survey.gpu_part.status, KESTREL_NO_DEVICES);
  EXPECT_NE(survey.gpu_part.message, "");
  EXPECT_TRUE(command::IsComplete(survey));
}

TEST_F(MachineSurveyTest, GpuThatCannotBeReadMakesItIncomplete) {
  machine_.faults = {{"hipGetDeviceProperties", 1, std::nullopt, hipErrorUnknown}};
  simulator::Install(machine_);
  const auto survey = command::SurveyMachine();
  EXPECT_EQ(survey.gpu_part.status, KESTREL_DEVICE_QUERY_FAILED);
  EXPECT_TRUE(survey.gpus.empty());
  EXPECT_FALSE(command::IsComplete(survey));
}

TEST_F(MachineSurveyTest, FreeMemoryThatCannotBeReadLeavesTheGpuInTheList) {
  // The survey asks for the memory of device 0 first, and then its free memory once more.
  machine_.faults = {{"hipMemGetInfo", 0, 2, hipErrorUnknown}};
  simulator::Install(machine_);
  const auto survey = command::SurveyMachine();
  ASSERT_EQ(survey.gpus.size(), 2U);
  EXPECT_EQ(survey.gpus[0].free_bytes, std::nullopt);
  EXPECT_EQ(survey.gpus[1].free_bytes, 3 * kGiB);
}

TEST_F(MachineSurveyTest, MemoryThatCannotBeReadMakesItIncomplete) {
  Platform().Fail("QueryMemoryLimit");
  const auto survey = command::SurveyMachine();
  EXPECT_EQ(survey.memory.part.status, KESTREL_MEMORY_QUERY_FAILED);
  EXPECT_EQ(survey.memory.part.message, "Failed to get global memory status.");
  EXPECT_FALSE(command::IsComplete(survey));
}

TEST_F(MachineSurveyTest, NamesOfStatusesAndLimitsAreForReaders) {
  EXPECT_EQ(command::StatusText(KESTREL_OK), "ok");
  EXPECT_EQ(command::StatusText(KESTREL_NO_DEVICES), "no_devices");
  EXPECT_EQ(command::StatusText(KESTREL_ARCHITECTURE_UNSUPPORTED), "architecture_unsupported");
  EXPECT_EQ(command::LimitText(KESTREL_LIMIT_GROUP, "/box"), "memory group /box");
  EXPECT_EQ(command::LimitText(KESTREL_LIMIT_GROUP, "/\x1B[2Jbox"), "memory group / [2Jbox");
  EXPECT_EQ(command::LimitText(KESTREL_LIMIT_MACHINE, ""), "the machine's free memory");
  EXPECT_EQ(command::LimitText(KESTREL_LIMIT_COMMIT, ""), "the commit limit");
  EXPECT_EQ(command::LimitText(77, ""), "unknown");
}

}  // namespace
}  // namespace kestrel::tests

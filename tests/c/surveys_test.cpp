#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "c/kestrelcore.h"
#include "simulator/control.h"
#include "tests/c/records.h"
#include "tests/fakes/cerr_recorder.h"
#include "tests/fakes/platform_fake.h"

namespace kestrel::tests {
namespace {

using simulator::Device;
using simulator::Machine;

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;
constexpr std::uint16_t kArchitectureIntel32 = 0;

Machine MachineWith(int device_count) {
  Machine machine;
  for (int i = 0; i < device_count; ++i) {
    Device device;
    device.name = "Card " + std::to_string(i);
    device.arch = "gfx" + std::to_string(1100 + i);
    device.integrated = i % 2;
    device.total_memory = kGiB * static_cast<std::uint64_t>(i + 1);
    device.free_memory = device.total_memory / 2;
    device.properties_memory = device.total_memory;
    machine.devices.push_back(device);
  }
  return machine;
}

class SurveysTest : public testing::Test {
 protected:
  SurveysTest() {
    Platform() = {};
    Platform().cpuid[{1, 0}].ecx = 0x10000000;  // AVX
    Platform().cpuid[{7, 0}].ebx = 0x20;        // AVX2
    simulator::Install(MachineWith(0));
  }

  static void InstallFault(int device_count, const simulator::Fault& fault) {
    Machine machine = MachineWith(device_count);
    machine.faults = {fault};
    simulator::Install(machine);
  }

  kestrel_result result_ = UsedResult();
  kestrel_result cpu_result_ = UsedResult();
  kestrel_cpu cpu_ = NewRecord<kestrel_cpu>();
  std::size_t count_ = 77;
};

TEST_F(SurveysTest, CpuSurveyReportsArchitectureAndExtensions) {
  EXPECT_EQ(kestrel_survey_cpu(&cpu_, &result_), KESTREL_OK);
  EXPECT_EQ(cpu_.architecture, KESTREL_CPU_ARCHITECTURE_X86_64);
  EXPECT_EQ(cpu_.extensions, 3U);
  EXPECT_EQ(result_.status, KESTREL_OK);
  EXPECT_STREQ(result_.message, "");
}

TEST_F(SurveysTest, UnknownArchitectureFailsTheCpuSurveyWithTheUnknownRecord) {
  Platform().architecture = kArchitectureIntel32;
  EXPECT_EQ(kestrel_survey_cpu(&cpu_, &result_), KESTREL_ARCHITECTURE_UNSUPPORTED);
  EXPECT_EQ(cpu_.architecture, KESTREL_CPU_ARCHITECTURE_UNKNOWN);
  EXPECT_EQ(cpu_.extensions, 0U);
  EXPECT_STREQ(result_.message, "Unsupported processor architecture");
}

TEST_F(SurveysTest, NullListOfAnyCapacityIsNotWrittenTo) {
  simulator::Install(MachineWith(3));
  EXPECT_EQ(kestrel_survey_gpus(nullptr, 5, &count_, &result_), KESTREL_OK);
  EXPECT_EQ(count_, 3U);
  EXPECT_EQ(result_.status, KESTREL_OK);
  EXPECT_STREQ(result_.message, "");
}

TEST_F(SurveysTest, ListOfNoCapacityIsNotRead) {
  Machine machine;
  machine.claimed_device_count = 0;
  simulator::Install(machine);
  auto* const nowhere = reinterpret_cast<kestrel_gpu*>(sizeof(kestrel_gpu));
  EXPECT_EQ(kestrel_survey_gpus(nowhere, 0, &count_, &result_), KESTREL_OK);
}

TEST_F(SurveysTest, NullListAsksForTheCountAlone) {
  simulator::Install(MachineWith(3));
  EXPECT_EQ(kestrel_survey_gpus(nullptr, 0, &count_, &result_), KESTREL_OK);
  EXPECT_EQ(count_, 3U);
}

TEST_F(SurveysTest, EveryFieldOfAGpuIsWritten) {
  simulator::Install(MachineWith(2));
  std::vector<kestrel_gpu> gpus(2, NewRecord<kestrel_gpu>());
  ASSERT_EQ(kestrel_survey_gpus(gpus.data(), gpus.size(), &count_, &result_), KESTREL_OK);
  ASSERT_EQ(count_, 2U);
  EXPECT_EQ(gpus[1].struct_size, sizeof(kestrel_gpu));
  EXPECT_EQ(gpus[1].total_memory, 2 * kGiB);
  EXPECT_EQ(gpus[1].dedicated_memory, 0U);
  EXPECT_EQ(gpus[1].device_id, 1);
  EXPECT_EQ(gpus[0].integration_type, KESTREL_GPU_INTEGRATION_DISCRETE);
  EXPECT_EQ(gpus[1].integration_type, KESTREL_GPU_INTEGRATION_INTEGRATED);
  EXPECT_EQ(gpus[1].detection_platform, KESTREL_GPU_PLATFORM_ROCM);
  EXPECT_STREQ(gpus[1].name, "Card 1");
  EXPECT_STREQ(gpus[1].architecture_name, "gfx1101");
  EXPECT_STREQ(gpus[1].detection_platform_version, "");
}

TEST_F(SurveysTest, NamesOfTheLongestLengthAreWhole) {
  Machine machine = MachineWith(1);
  machine.devices[0].name = std::string(256, 'n');
  machine.devices[0].arch = std::string(256, 'a');
  simulator::Install(machine);
  kestrel_gpu gpu = NewRecord<kestrel_gpu>();
  ASSERT_EQ(kestrel_survey_gpus(&gpu, 1, &count_, &result_), KESTREL_OK);
  EXPECT_EQ(gpu.name, std::string(256, 'n'));
  EXPECT_EQ(gpu.architecture_name, std::string(256, 'a'));
}

TEST_F(SurveysTest, RecordsBeyondTheCountStayAsTheyAre) {
  simulator::Install(MachineWith(1));
  std::vector<kestrel_gpu> gpus(2, NewRecord<kestrel_gpu>());
  gpus[1].device_id = 55;
  ASSERT_EQ(kestrel_survey_gpus(gpus.data(), gpus.size(), &count_, &result_), KESTREL_OK);
  EXPECT_EQ(count_, 1U);
  EXPECT_EQ(gpus[1].device_id, 55);
}

TEST_F(SurveysTest, TooFewRecordsFailWithTheCountThatIsNeededAndWriteNone) {
  simulator::Install(MachineWith(3));
  std::vector<kestrel_gpu> gpus(2, NewRecord<kestrel_gpu>());
  gpus[0].device_id = 55;
  EXPECT_EQ(kestrel_survey_gpus(gpus.data(), gpus.size(), &count_, &result_),
            KESTREL_CAPACITY_TOO_SMALL);
  EXPECT_STREQ(result_.message, "There are more GPUs than records");
  EXPECT_EQ(count_, 3U);
  EXPECT_EQ(gpus[0].device_id, 55);
}

TEST_F(SurveysTest, ListWithoutRecordsFailsIfThereAreGpus) {
  simulator::Install(MachineWith(1));
  kestrel_gpu unset{};
  EXPECT_EQ(kestrel_survey_gpus(&unset, 0, &count_, &result_), KESTREL_CAPACITY_TOO_SMALL);
  EXPECT_EQ(count_, 1U);
}

TEST_F(SurveysTest, ListWithoutRecordsIsEnoughForNoGpu) {
  Machine machine;
  machine.claimed_device_count = 0;
  simulator::Install(machine);
  kestrel_gpu unset{};
  EXPECT_EQ(kestrel_survey_gpus(&unset, 0, &count_, &result_), KESTREL_OK);
  EXPECT_EQ(count_, 0U);
}

// The host was compiled with a later header, whose record has one more field.
TEST_F(SurveysTest, LargerRecordsOfAHostAreWrittenAtItsStride) {
  struct LaterGpu {
    kestrel_gpu known;
    std::uint64_t later;
  };
  simulator::Install(MachineWith(3));
  std::vector<LaterGpu> gpus(3, LaterGpu{NewRecord<kestrel_gpu>(), 99});
  gpus[0].known.struct_size = sizeof(LaterGpu);
  ASSERT_EQ(kestrel_survey_gpus(&gpus[0].known, gpus.size(), &count_, &result_), KESTREL_OK);
  for (std::size_t i = 0; i < gpus.size(); ++i) {
    EXPECT_EQ(gpus[i].known.struct_size, sizeof(LaterGpu));
    EXPECT_EQ(gpus[i].known.name, "Card " + std::to_string(i));
    EXPECT_EQ(gpus[i].later, 0U);
  }
}

TEST_F(SurveysTest, NoDevicesFailsWithTheMessageOfTheSurvey) {
  EXPECT_EQ(kestrel_survey_gpus(nullptr, 0, &count_, &result_), KESTREL_NO_DEVICES);
  EXPECT_EQ(count_, 0U);
  EXPECT_EQ(result_.status, KESTREL_NO_DEVICES);
  EXPECT_STREQ(result_.message, "Error trying to query ROCm gpus: No hip devices found!");
}

TEST_F(SurveysTest, FailedDeviceFailsTheListAndWritesNoRecord) {
  InstallFault(3, {"hipGetDeviceProperties", 1, {}, hipErrorUnknown});
  kestrel_gpu gpus[3] = {NewRecord<kestrel_gpu>()};
  gpus[0].device_id = 55;
  EXPECT_EQ(kestrel_survey_gpus(gpus, 3, &count_, &result_), KESTREL_DEVICE_QUERY_FAILED);
  EXPECT_EQ(count_, 0U);
  EXPECT_EQ(gpus[0].device_id, 55);
  EXPECT_STREQ(result_.message,
               "Error trying to query ROCm gpus: Invalid hip device at device id'1'");
}

TEST_F(SurveysTest, SurveysWriteNothingToStandardErrorWithoutAResult) {
  const CerrRecorder cerr;
  EXPECT_EQ(kestrel_survey_gpus(nullptr, 0, &count_, nullptr), KESTREL_NO_DEVICES);
  Platform().architecture = kArchitectureIntel32;
  EXPECT_EQ(kestrel_survey_cpu(&cpu_, nullptr), KESTREL_ARCHITECTURE_UNSUPPORTED);
  EXPECT_EQ(cerr.text(), "");
}

TEST_F(SurveysTest, GpuSurveyRefusesInvalidArguments) {
  simulator::Install(MachineWith(1));
  kestrel_gpu unset{};
  EXPECT_EQ(kestrel_survey_gpus(nullptr, 0, nullptr, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(result_.status, KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(kestrel_survey_gpus(&unset, 1, &count_, &result_), KESTREL_INVALID_ARGUMENT);
  kestrel_result no_result{};
  EXPECT_EQ(kestrel_survey_gpus(nullptr, 0, &count_, &no_result), KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(count_, 77U);
  EXPECT_TRUE(simulator::RecordedCalls().empty());
}

TEST_F(SurveysTest, CpuSurveyRefusesInvalidArguments) {
  kestrel_cpu unset{};
  EXPECT_EQ(kestrel_survey_cpu(nullptr, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(kestrel_survey_cpu(&unset, &result_), KESTREL_INVALID_ARGUMENT);
  EXPECT_STREQ(result_.message, "cpu is null, or its struct_size is not set");
}

TEST_F(SurveysTest, HardwareSurveyReportsBothSurveys) {
  simulator::Install(MachineWith(1));
  kestrel_gpu gpu = NewRecord<kestrel_gpu>();
  EXPECT_EQ(kestrel_survey_hardware(&gpu, 1, &count_, &result_, &cpu_, &cpu_result_), KESTREL_OK);
  EXPECT_EQ(count_, 1U);
  EXPECT_STREQ(gpu.name, "Card 0");
  EXPECT_EQ(cpu_.extensions, 3U);
}

TEST_F(SurveysTest, FailedGpuSurveyDoesNotStopTheCpuSurvey) {
  EXPECT_EQ(kestrel_survey_hardware(nullptr, 0, &count_, &result_, &cpu_, &cpu_result_),
            KESTREL_NO_DEVICES);
  EXPECT_EQ(result_.status, KESTREL_NO_DEVICES);
  EXPECT_EQ(cpu_result_.status, KESTREL_OK);
  EXPECT_EQ(cpu_.extensions, 3U);
}

TEST_F(SurveysTest, FailedCpuSurveyIsReportedNextToTheGpus) {
  simulator::Install(MachineWith(1));
  Platform().architecture = kArchitectureIntel32;
  EXPECT_EQ(kestrel_survey_hardware(nullptr, 0, &count_, &result_, &cpu_, &cpu_result_),
            KESTREL_ARCHITECTURE_UNSUPPORTED);
  EXPECT_EQ(result_.status, KESTREL_OK);
  EXPECT_EQ(count_, 1U);
  EXPECT_EQ(cpu_result_.status, KESTREL_ARCHITECTURE_UNSUPPORTED);
}

TEST_F(SurveysTest, HardwareSurveyMakesNeitherSurveyIfAnArgumentIsInvalid) {
  EXPECT_EQ(kestrel_survey_hardware(nullptr, 0, &count_, &result_, nullptr, &cpu_result_),
            KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(result_.status, KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(cpu_result_.status, KESTREL_INVALID_ARGUMENT);
  EXPECT_STREQ(result_.message, "cpu is null, or its struct_size is not set");
  EXPECT_STREQ(cpu_result_.message, "cpu is null, or its struct_size is not set");
  EXPECT_EQ(kestrel_survey_hardware(nullptr, 0, nullptr, &result_, &cpu_, &cpu_result_),
            KESTREL_INVALID_ARGUMENT);
  EXPECT_STREQ(result_.message, "count is null, or gpus[0].struct_size is not set");
  EXPECT_STREQ(cpu_result_.message, "count is null, or gpus[0].struct_size is not set");
  kestrel_result no_result{};
  EXPECT_EQ(kestrel_survey_hardware(nullptr, 0, &count_, &result_, &cpu_, &no_result),
            KESTREL_INVALID_ARGUMENT);
  EXPECT_TRUE(simulator::RecordedCalls().empty());
  EXPECT_TRUE(Platform().calls.empty());
}

TEST_F(SurveysTest, InvalidResultOfOneSurveyIsReportedToTheOther) {
  kestrel_result unset{};
  EXPECT_EQ(kestrel_survey_hardware(nullptr, 0, &count_, &unset, &cpu_, &cpu_result_),
            KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(cpu_result_.status, KESTREL_INVALID_ARGUMENT);
  EXPECT_STREQ(cpu_result_.message, "The struct_size of the other result is not set");
  EXPECT_EQ(kestrel_survey_hardware(nullptr, 0, &count_, &result_, &cpu_, &unset),
            KESTREL_INVALID_ARGUMENT);
  EXPECT_EQ(result_.status, KESTREL_INVALID_ARGUMENT);
  EXPECT_STREQ(result_.message, "The struct_size of the other result is not set");
  EXPECT_EQ(unset.status, KESTREL_OK);
}

TEST_F(SurveysTest, InvalidArgumentsOfTheHardwareSurveyLeaveItsOutputsUnchanged) {
  kestrel_gpu unset_gpu{};
  kestrel_cpu unset_cpu{};
  kestrel_result unset_result{};
  cpu_.extensions = 55;
  kestrel_survey_hardware(&unset_gpu, 1, &count_, &result_, &cpu_, &cpu_result_);
  kestrel_survey_hardware(nullptr, 0, &count_, &result_, &unset_cpu, &cpu_result_);
  kestrel_survey_hardware(nullptr, 0, &count_, &unset_result, &cpu_, &cpu_result_);
  EXPECT_EQ(count_, 77U);
  EXPECT_EQ(cpu_.extensions, 55U);
}

TEST_F(SurveysTest, GpuSurveyLeavesTheLastDeviceCurrent) {
  simulator::Install(MachineWith(3));
  EXPECT_EQ(kestrel_survey_gpus(nullptr, 0, &count_, &result_), KESTREL_OK);
  EXPECT_EQ(simulator::CurrentDevice(), 2);
}

}  // namespace
}  // namespace kestrel::tests

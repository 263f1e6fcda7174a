#include "command/record.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "c/kestrelcore.h"
#include "simulator/machine_file.h"
#include "tests/command/machine.h"

namespace kestrel::tests {
namespace {

class RecordTest : public testing::Test {
 protected:
  // The machine as it is after it was recorded and read again.
  simulator::Machine Recorded() {
    simulator::Install(machine_);
    return simulator::ParseMachine(command::RecordMachine().text, "recorded.toml");
  }

  simulator::Machine machine_ = InstallMachine();
};

TEST_F(RecordTest, DevicesKeepTheirFigures) {
  machine_.devices[1].properties_memory = 3 * kGiB;
  machine_.devices[1].free_memory = 5 * kGiB;
  const auto recorded = Recorded();
  ASSERT_EQ(recorded.devices.size(), 2U);
  const auto& device = recorded.devices[1];
  EXPECT_EQ(device.name, "Graphics");
  EXPECT_EQ(device.arch, "gfx1103");
  EXPECT_EQ(device.integrated, 1);
  EXPECT_EQ(device.total_memory, 4 * kGiB);
  EXPECT_EQ(device.free_memory, 5 * kGiB);
  EXPECT_EQ(device.properties_memory, 3 * kGiB);
  EXPECT_TRUE(recorded.faults.empty());
}

TEST_F(RecordTest, NamesSurviveQuotingAndFullLength) {
  machine_.devices[0].name = "\"quoted\" \\ back";
  machine_.devices[1].name = std::string(256, 'x');
  const auto recorded = Recorded();
  EXPECT_EQ(recorded.devices[0].name, "\"quoted\" \\ back");
  EXPECT_EQ(recorded.devices[1].name, std::string(256, 'x'));
}

TEST_F(RecordTest, BytesThatAMachineFileCannotHoldAreReplaced) {
  machine_.devices[0].name = "a\nb\xFF";
  EXPECT_EQ(Recorded().devices[0].name, "a b?");
}

TEST_F(RecordTest, AmountsThatAMachineFileCannotHoldBecomeTheGreatestThatItCan) {
  constexpr std::uint64_t kGreatest = std::uint64_t{1} << 63U;
  machine_.devices[0].total_memory = kGreatest - 1;
  machine_.devices[0].free_memory = kGreatest;
  machine_.devices[0].properties_memory = UINT64_MAX;
  const auto device = Recorded().devices.at(0);
  EXPECT_EQ(device.total_memory, kGreatest - 1);
  EXPECT_EQ(device.free_memory, kGreatest - 1);
  EXPECT_EQ(device.properties_memory, kGreatest - 1);
}

TEST_F(RecordTest, FailingQueriesBecomeFaults) {
  machine_.faults = {{"hipGetDeviceProperties", 0, std::nullopt, hipErrorUnknown},
                     {"hipMemGetInfo", 1, std::nullopt, hipErrorNotReady}};
  const auto recorded = Recorded();
  ASSERT_EQ(recorded.faults.size(), 2U);
  EXPECT_EQ(recorded.faults[0].operation, "hipGetDeviceProperties");
  EXPECT_EQ(recorded.faults[0].device, 0);
  EXPECT_EQ(recorded.faults[0].status, hipErrorUnknown);
  EXPECT_EQ(recorded.faults[1].operation, "hipMemGetInfo");
  EXPECT_EQ(recorded.faults[1].device, 1);
  EXPECT_EQ(recorded.faults[1].status, hipErrorNotReady);
}

TEST_F(RecordTest, DeviceThatCannotBeSelectedIsAFaultWithoutFigures) {
  machine_.faults = {{"hipSetDevice", 1, std::nullopt, hipErrorInvalidDevice}};
  const auto recorded = Recorded();
  ASSERT_EQ(recorded.faults.size(), 1U);
  EXPECT_EQ(recorded.faults[0].operation, "hipSetDevice");
  EXPECT_EQ(recorded.devices[1].total_memory, 0U);
  EXPECT_EQ(recorded.devices[1].free_memory, 0U);
}

TEST_F(RecordTest, MachineWithoutDeviceHasNoFault) {
  machine_ = {};
  const auto recorded = Recorded();
  EXPECT_TRUE(recorded.devices.empty());
  EXPECT_TRUE(recorded.faults.empty());
  EXPECT_EQ(recorded.claimed_device_count, std::nullopt);
}

TEST_F(RecordTest, RuntimeThatDoesNotStartIsAFault) {
  machine_.faults = {{"hipGetDeviceCount", std::nullopt, std::nullopt, hipErrorNotInitialized}};
  const auto recorded = Recorded();
  ASSERT_EQ(recorded.faults.size(), 1U);
  EXPECT_EQ(recorded.faults[0].status, hipErrorNotInitialized);
}

TEST_F(RecordTest, RuntimeThatCountsNoDeviceIsRecordedAsSuch) {
  machine_ = {};
  machine_.claimed_device_count = 0;
  EXPECT_EQ(Recorded().claimed_device_count, 0);
}

TEST_F(RecordTest, DevicesBeyondTheMostThatAreRecordedAreCountedAndReported) {
  machine_.claimed_device_count = 1025;
  const auto recorded = Recorded();
  EXPECT_EQ(recorded.devices.size(), 1024U);
  EXPECT_EQ(recorded.claimed_device_count, 1025);
  const auto outcome = command::RunRecord({});
  EXPECT_EQ(outcome.status, command::kFailure);
  EXPECT_EQ(outcome.error,
            "kestrel record: the HIP runtime counts 1025 GPUs; only the first 1024 are recorded");
  EXPECT_NE(outcome.output, "");
  const std::string path = "kestrel-record-most-test.toml";
  EXPECT_EQ(command::RunRecord({path}).status, command::kFailure);
  EXPECT_EQ(command::RunRecord({path}).error, outcome.error);
  std::remove(path.c_str());
}

TEST_F(RecordTest, AllOfTheMostDevicesAreRecorded) {
  machine_.claimed_device_count = 1024;
  const auto recorded = Recorded();
  EXPECT_EQ(recorded.devices.size(), 1024U);
  EXPECT_EQ(recorded.claimed_device_count, std::nullopt);
  EXPECT_EQ(command::RunRecord({}).status, command::kSuccess);
}

TEST_F(RecordTest, TextIsAMachineFile) {
  machine_.faults = {{"hipMemGetInfo", 1, std::nullopt, hipErrorNotReady}};
  simulator::Install(machine_);
  const auto file = command::RecordMachine();
  EXPECT_EQ(file.left_out, 0);
  EXPECT_EQ(file.text, std::string("# Recorded by kestrel ") + kestrel_version_text() + R"(.

[[device]]
name = "Card"
arch = "gfx1102"
integrated = false
total_memory = 8589934592
free_memory = 7516192768
properties_memory = 8589934592

[[device]]
name = "Graphics"
arch = "gfx1103"
integrated = true
total_memory = 0
free_memory = 0
properties_memory = 4294967296

[[fault]]
operation = "hipMemGetInfo"
device = 1
status = "hipErrorNotReady"
)");
}

TEST_F(RecordTest, StatusThatHasNoNameIsAnUnknownError) {
  machine_.faults = {{"hipSetDevice", 0, std::nullopt, static_cast<hipError_t>(1900)}};
  EXPECT_EQ(Recorded().faults[0].status, hipErrorUnknown);
}

TEST_F(RecordTest, FileHoldsTheMachine) {
  const std::string path = "kestrel-record-test.toml";
  const auto outcome = command::RunRecord({path});
  EXPECT_EQ(outcome.status, command::kSuccess);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.error, "");
  std::ifstream file(path, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), command::RecordMachine().text);
  file.close();
  std::remove(path.c_str());
}

TEST_F(RecordTest, FileThatCannotBeWrittenIsNamedWithTheReason) {
  const std::string path = "no-such-folder/machine.toml";
  const auto outcome = command::RunRecord({path});
  EXPECT_EQ(outcome.status, command::kOutputFailure);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.error,
            "kestrel record: '" + path + "' could not be written: No such file or directory");
}

}  // namespace
}  // namespace kestrel::tests

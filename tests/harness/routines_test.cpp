#include "harness/routines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "simulator/control.h"
#include "tests/fakes/output_recorder.h"
#include "tests/fakes/platform_fake.h"

namespace kestrel::tests {
namespace {

using simulator::Install;
using simulator::Machine;

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;

constexpr const char* kCpuBlock =
    "Cpu Information:\n"
    "========================\n"
    "  CPU Architecture: x86_64\n"
    "  Supported Instruction Set Extensions: AVX, AVX2\n"
    "  ------------------------\n";

class RoutinesTest : public testing::Test {
 protected:
  RoutinesTest() {
    Platform() = {};
    Platform().cpuid = {{{1, 0}, {0, 0, 0x10000000, 0}}, {{7, 0}, {0, 0x20, 0, 0}}};
    Platform().memory = {16 * kGiB, 6 * kGiB, 0};
  }
};

TEST_F(RoutinesTest, HardwareSurveyPrintsTheCpuAndEveryGpu) {
  Machine machine;
  machine.devices = {{"First card", "gfx1100", 0, 16 * kGiB, 15 * kGiB, 16 * kGiB},
                     {"Second", "gfx90c:xnack-", 1, 512 << 20, 0, 0}};
  Install(machine);
  EXPECT_EQ(OutputOf(PrintHardwareSurvey), std::string(kCpuBlock) +
                                               "Gpu Information:\n"
                                               "========================\n"
                                               "  Gpu Name: First card\n"
                                               "  Device ID: 0\n"
                                               "  Total Memory: 16.00 GiB\n"
                                               "  Dedicated Memory: 0 Bytes\n"
                                               "  Integration Type: Discrete\n"
                                               "  Detection Platform: ROCm\n"
                                               "  Detection Platform Version: \n"
                                               "  Other Info:\n"
                                               "    gcnArchName: gfx1100\n"
                                               "  ------------------------\n"
                                               "  Gpu Name: Second\n"
                                               "  Device ID: 1\n"
                                               "  Total Memory: 512.00 MiB\n"
                                               "  Dedicated Memory: 0 Bytes\n"
                                               "  Integration Type: Integrated\n"
                                               "  Detection Platform: ROCm\n"
                                               "  Detection Platform Version: \n"
                                               "  Other Info:\n"
                                               "    gcnArchName: gfx90c:xnack-\n"
                                               "  ------------------------\n"
                                               "  ------------------------\n");
}

TEST_F(RoutinesTest, HardwareSurveyWithoutDevicesPrintsOneClosingLine) {
  Machine machine;
  machine.claimed_device_count = 0;
  Install(machine);
  EXPECT_EQ(OutputOf(PrintHardwareSurvey), std::string(kCpuBlock) +
                                               "Gpu Information:\n"
                                               "========================\n"
                                               "  ------------------------\n");
}

TEST_F(RoutinesTest, HardwareSurveyPrintsGpuFailureAfterTheCpu) {
  Install({});
  EXPECT_EQ(OutputOf(PrintHardwareSurvey),
            std::string(kCpuBlock) +
                "Failed to retrieve GPU information: "
                "Error trying to query ROCm gpus: No hip devices found!\n");
}

TEST_F(RoutinesTest, HardwareSurveyPrintsGpusAfterCpuFailure) {
  Platform().architecture = 0;
  Machine machine;
  machine.claimed_device_count = 0;
  Install(machine);
  EXPECT_EQ(OutputOf(PrintHardwareSurvey),
            "Failed to retrieve CPU information: Unsupported processor architecture\n"
            "Gpu Information:\n"
            "========================\n"
            "  ------------------------\n");
}

TEST_F(RoutinesTest, CpuUsagePrintsUpToSixDigits) {
  Platform().times = {{0, 0}, {0, 5'000'000}};
  EXPECT_EQ(OutputOf([] { PrintCpuUsage(1234, 500); }), "CPU Usage (PID '1234') ....... 12.5%\n");
  Platform().times = {{0, 0}};
  EXPECT_EQ(OutputOf([] { PrintCpuUsage(1234, 500); }), "CPU Usage (PID '1234') ....... 0%\n");
  Platform().times = {{0, 0}, {0, 1'333'333}};
  EXPECT_EQ(OutputOf([] { PrintCpuUsage(1234, 500); }),
            "CPU Usage (PID '1234') ....... 3.33333%\n");
}

TEST_F(RoutinesTest, CpuUsagePrintsMessageOfTheMeterBeforeTheLine) {
  EXPECT_EQ(OutputOf([] { PrintCpuUsage(-5, 500); }),
            "Failed to get CPU usage for PID '-5' since PID must be positive!\n"
            "CPU Usage (PID '-5') ....... -1%\n");
}

TEST_F(RoutinesTest, ProcessMemoryPrintsDecimalUnitsAndPercentSign) {
  Platform().resident_bytes = 12'340'000;
  EXPECT_EQ(OutputOf([] { PrintProcessMemory(77); }), "Mem Usage (PID '77') ....... 12.34 MB%\n");
}

TEST_F(RoutinesTest, ProcessMemoryPrintsMessageOfTheMeterBetweenLabelAndValue) {
  EXPECT_EQ(OutputOf([] { PrintProcessMemory(0); }),
            "Mem Usage (PID '0') ....... "
            "Failed to get used RAM for PID '0' since PID must be positive!\n"
            "18446744.07 TB%\n");
}

TEST_F(RoutinesTest, MachineMemoryPrintsFiveLinesInOneColumn) {
  Machine machine;
  machine.devices = {{"a", "gfx1", 0, 8 * kGiB, 7 * kGiB, 8 * kGiB},
                     {"b", "gfx2", 0, 16 * kGiB, 15 * kGiB, 16 * kGiB}};
  Install(machine);
  EXPECT_EQ(OutputOf(PrintMachineMemory),
            "Machine physical RAM ........ 16.00 GiB\n"
            "Free RAM .................... 6.00 GiB\n"
            "Machine physical VRAM ....... 24.00 GiB\n"
            "Free VRAM ................... 7.00 GiB\n"
            "------------------------------------\n"
            "\n");
}

TEST_F(RoutinesTest, MachineMemoryPrintsMessageOfTheMeterAfterItsLabel) {
  Install({});
  EXPECT_EQ(OutputOf(PrintMachineMemory),
            "Machine physical RAM ........ 16.00 GiB\n"
            "Free RAM .................... 6.00 GiB\n"
            "Machine physical VRAM ....... hipGetDeviceCount failed: hipErrorNoDevice\n"
            "0 Bytes\n"
            "Free VRAM ................... 0 Bytes\n"
            "------------------------------------\n"
            "\n");
}

// A user who watches a slow survey sees each line when it is printed.
TEST_F(RoutinesTest, EveryLineIsFlushed) {
  Machine machine;
  machine.devices.resize(2);
  Install(machine);
  const OutputRecorder output;
  PrintHardwareSurvey();
  PrintCpuUsage(1234, 500);
  const std::string text = output.text();
  EXPECT_EQ(output.flushes(), std::count(text.begin(), text.end(), '\n'));
}

// Otherwise a message of the meter would come before its label: the meters do not flush std::cout.
TEST_F(RoutinesTest, EveryLabelIsFlushed) {
  Machine machine;
  machine.devices.resize(1);
  Install(machine);
  const OutputRecorder output;
  PrintProcessMemory(77);
  EXPECT_EQ(output.flushes(), 2);
  PrintMachineMemory();
  EXPECT_EQ(output.flushes(), 2 + 2 * 4 + 1);
}

}  // namespace
}  // namespace kestrel::tests

#include "command/watch_sample.h"

#include <gtest/gtest.h>

#include "tests/command/machine.h"

namespace kestrel::tests {
namespace {

using command::Sample;

Sample ExampleSample() {
  Sample sample;
  sample.time = std::chrono::milliseconds(1'700'000'000'123);
  sample.available_bytes = 6 * kGiB;
  sample.vram = {{0, 8 * kGiB, 7 * kGiB}, {1, 4 * kGiB, std::nullopt}};
  sample.processes = {{4711, true, 12.5F, kGiB, true}, {12, false, 0, std::nullopt, true}};
  return sample;
}

TEST(WatchSampleTest, TextIsOneLine) {
  EXPECT_EQ(command::SampleText(ExampleSample()),
            "RAM 6.00 GiB available; VRAM 0 7.00 GiB free; VRAM 1 unknown free; PID 4711 12.5 % "
            "1.00 GiB; PID 12 ended\n");
}

TEST(WatchSampleTest, ProcessThatWasNeverMeasuredHasNotEnded) {
  Sample sample;
  sample.processes = {{12, false, 0, std::nullopt, false}};
  EXPECT_EQ(command::SampleText(sample), "RAM unknown available; PID 12 cannot be measured\n");
}

TEST(WatchSampleTest, JsonIsOneLineWithNullForWhatIsUnknown) {
  const std::string text = command::SampleJson(ExampleSample());
  EXPECT_EQ(text.find('\n'), text.size() - 1);
  EXPECT_EQ(text,
            "{\"time_ms\":1700000000123,\"memory_available_bytes\":6442450944,"
            "\"gpus\":[{\"device\":0,\"memory_free_bytes\":7516192768},"
            "{\"device\":1,\"memory_free_bytes\":null}],"
            "\"processes\":[{\"pid\":4711,\"running\":true,\"cpu_percent\":12.5,"
            "\"resident_bytes\":1073741824},"
            "{\"pid\":12,\"running\":false,\"cpu_percent\":null,\"resident_bytes\":null}]}\n");
}

TEST(WatchSampleTest, MemoryIsMeasuredForRunningProcessesAlone) {
  InstallMachine();
  Platform().resident_bytes = 5 * kGiB;
  Sample sample = ExampleSample();
  sample.processes[1].resident_bytes = kGiB;  // when it still ran
  command::MeasureMemory(sample);
  EXPECT_EQ(sample.available_bytes, 6 * kGiB);
  EXPECT_EQ(sample.vram[1].free_bytes, 3 * kGiB);
  EXPECT_EQ(sample.processes[0].resident_bytes, 5 * kGiB);
  EXPECT_EQ(sample.processes[1].resident_bytes, std::nullopt);
}

TEST(WatchSampleTest, FiguresThatCannotBeReadAreUnknown) {
  InstallMachine();
  Platform().Fail("QueryMemoryStatus");
  simulator::Install({});
  Sample sample = ExampleSample();
  command::MeasureMemory(sample);
  EXPECT_EQ(sample.available_bytes, std::nullopt);
  EXPECT_EQ(sample.vram[0].free_bytes, std::nullopt);
}

}  // namespace
}  // namespace kestrel::tests

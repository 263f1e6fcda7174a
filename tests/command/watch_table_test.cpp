#include "command/watch_table.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestrel::tests {
namespace {

using command::Sample;
using command::WatchTable;

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30U;

// Columns that a line takes: characters, not bytes.
std::size_t Columns(const std::string& line) {
  std::size_t columns = 0;
  for (const char letter : line) {
    columns += (static_cast<unsigned char>(letter) & 0xC0U) != 0x80 ? 1 : 0;
  }
  return columns;
}

Sample ExampleSample(float percent) {
  Sample sample;
  sample.physical_bytes = 16 * kGiB;
  sample.available_bytes = 8 * kGiB;
  sample.vram = {{0, 8 * kGiB, 8 * kGiB}, {1, 8 * kGiB, std::nullopt}};
  sample.processes = {{4711, true, percent, kGiB, true}, {12, false, 0, std::nullopt, true}};
  return sample;
}

WatchTable FilledTable(bool blocks = false) {
  WatchTable table("kestrel watch", blocks);
  for (const float percent : {0.0F, 25.0F, 50.0F}) {
    table.Add(ExampleSample(percent));
  }
  return table;
}

TEST(WatchTableTest, EachLineHasItsFigureAndItsGraph) {
  EXPECT_EQ(
      FilledTable().Lines({80, 24}),
      (std::vector<std::string>{
          "kestrel watch", "available RAM             8.00 GiB  ===",
          "free VRAM 0               8.00 GiB  ###", "free VRAM 1                unknown     ",
          "PID 4711          50.0 %  1.00 GiB   =#", "PID 12                       ended     "}));
}

TEST(WatchTableTest, ProcessThatWasNeverMeasuredHasNotEnded) {
  Sample sample = ExampleSample(0);
  sample.processes[1].was_measured = false;
  WatchTable table("kestrel watch", /*blocks=*/false);
  table.Add(sample);
  EXPECT_EQ(table.Lines({80, 24})[5], "PID 12          cannot be measured   ");
}

TEST(WatchTableTest, GraphsUseBlocksOnATerminalThatShowsThem) {
  EXPECT_EQ(FilledTable(true).Lines({80, 24})[4],
            "PID 4711          50.0 %  1.00 GiB   \u2584\u2588");
}

TEST(WatchTableTest, NoLineIsWiderThanTheScreen) {
  WatchTable table("kestrel watch, every 1000 ms, Ctrl-C ends", true);
  for (int i = 0; i < 2000; ++i) {
    table.Add(ExampleSample(50));
  }
  for (std::size_t columns = 1; columns < 300; ++columns) {
    for (const std::string& line : table.Lines({columns, 24})) {
      EXPECT_LE(Columns(line), columns) << line;
    }
  }
  EXPECT_EQ(Columns(table.Lines({80, 24})[1]), 80U);
  EXPECT_EQ(Columns(table.Lines({40, 24})[1]), 40U);
}

TEST(WatchTableTest, ScreenThatIsTooLowSaysHowMuchIsHidden) {
  const auto lines = FilledTable().Lines({80, 4});
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines.back(), "... 3 more lines");
  EXPECT_EQ(FilledTable().Lines({80, 2}),
            (std::vector<std::string>{"kestrel watch", "... 5 more lines"}));
  EXPECT_EQ(FilledTable().Lines({80, 1}), std::vector<std::string>{"kestrel watch"});
  EXPECT_EQ(FilledTable().Lines({80, 6}), FilledTable().Lines({80, 24}));
}

TEST(WatchTableTest, HistoryIsAsLongAsAWideScreen) {
  WatchTable table("", false);
  for (int i = 0; i < 1100; ++i) {
    table.Add(ExampleSample(50));
  }
  EXPECT_EQ(table.Lines({2000, 24})[1].size(), 36U + 1024U);
}

TEST(WatchTableTest, GraphBeginsWhereAColumnIsLeft) {
  EXPECT_EQ(FilledTable().Lines({36, 24})[1], "available RAM             8.00 GiB");
  EXPECT_EQ(FilledTable().Lines({37, 24})[1], "available RAM             8.00 GiB  =");
}

TEST(WatchTableTest, FigureAboveTheTotalFillsTheGraph) {
  WatchTable table("", false);
  Sample sample = ExampleSample(0.5F);
  sample.available_bytes = 40 * kGiB;
  table.Add(sample);
  EXPECT_EQ(table.Lines({80, 24})[1], "available RAM            40.00 GiB  #");
  EXPECT_EQ(table.Lines({80, 24})[4], "PID 4711           0.5 %  1.00 GiB  #");
}

TEST(WatchTableTest, BusyProcessWithTheWidestSizeKeepsItsGraph) {
  WatchTable table("", false);
  Sample sample = ExampleSample(100);
  sample.processes[0].resident_bytes = 1023 * kGiB;
  table.Add(sample);
  EXPECT_EQ(table.Lines({80, 24})[4], "PID 4711      100.0 %  1023.00 GiB  #");
}

TEST(WatchTableTest, LongFiguresKeepTheirDigits) {
  WatchTable table("", false);
  Sample sample = ExampleSample(1234.5F);
  sample.processes[0].pid = 2147483647;
  sample.processes[0].resident_bytes = 1023 * kGiB;
  table.Add(sample);
  EXPECT_EQ(table.Lines({80, 24})[4], "PID 2147483647 1234.5 %  1023.00 GiB");
}

TEST(WatchTableTest, FigureThatEndsNextToTheGraphHasNone) {
  WatchTable table("", false);
  Sample sample = ExampleSample(1234.5F);
  sample.processes[0].pid = 214748364;
  sample.processes[0].resident_bytes = 1023 * kGiB;
  table.Add(sample);
  EXPECT_EQ(table.Lines({80, 24})[4], "PID 214748364 1234.5 %  1023.00 GiB");
}

}  // namespace
}  // namespace kestrel::tests

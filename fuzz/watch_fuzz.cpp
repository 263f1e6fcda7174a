// What `kestrel watch` writes of a sample: JSON and text of one line, and a table that never
// exceeds the screen. The input is the figures and the size of the screen.

#include <fuzzer/FuzzedDataProvider.h>

#include <nlohmann/json.hpp>

#include "command/watch_sample.h"
#include "command/watch_table.h"
#include "fuzz/answering_library.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"

namespace kestrel::fuzz {

namespace {

using command::Sample;

Sample SampleFrom(FuzzedDataProvider& input, std::size_t gpus, std::size_t processes) {
  Sample sample;
  sample.time = std::chrono::milliseconds(input.ConsumeIntegral<std::int64_t>());
  sample.physical_bytes = input.ConsumeIntegral<std::uint64_t>();
  for (std::size_t i = 0; i < gpus; ++i) {
    sample.vram.push_back(
        {input.ConsumeIntegral<int>(), input.ConsumeIntegral<std::uint64_t>(), std::nullopt});
  }
  for (std::size_t i = 0; i < processes; ++i) {
    sample.processes.push_back({input.ConsumeIntegral<int>(), input.ConsumeBool(),
                                input.ConsumeFloatingPointInRange(-1.0F, 1e9F), std::nullopt});
  }
  command::MeasureMemory(sample);
  return sample;
}

// The characters of a line of UTF-8.
std::size_t ColumnsOf(const std::string& line) {
  std::size_t columns = 0;
  for (const char byte : line) {
    columns += (static_cast<unsigned char>(byte) & 0xC0U) != 0x80 ? 1U : 0U;
  }
  return columns;
}

void RequireLine(const std::string& text) {
  Require(CompleteLines(text).size() == 1 && Split(text, '\n').back().empty(),
          "a sample is one line");
}

void RequireJson(const Sample& sample) {
  const std::string text = command::SampleJson(sample);
  RequireLine(text);
  const auto json = nlohmann::json::parse(text, nullptr, false);
  Require(json.is_object(), "JSON can be read back");
  Require(json["time_ms"] == sample.time.count(), "JSON has the time");
  for (std::size_t i = 0; i < sample.processes.size(); ++i) {
    const auto& process = sample.processes[i];
    Require(json["processes"][i]["pid"] == process.pid, "JSON has the processes");
    Require(json["processes"][i]["cpu_percent"].is_null() == !process.running,
            "an ended process uses no processor");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  AnswerFrom(input);
  const auto gpus = input.ConsumeIntegralInRange<std::size_t>(0, 3);
  const auto processes = input.ConsumeIntegralInRange<std::size_t>(0, 3);
  const bool blocks = input.ConsumeBool();
  const command::ScreenSize screen = {input.ConsumeIntegralInRange<std::size_t>(0, 200),
                                      input.ConsumeIntegralInRange<std::size_t>(0, 12)};
  command::WatchTable table("kestrel watch", blocks);
  for (int samples = 0; samples < 4 && input.remaining_bytes() > 0; ++samples) {
    const Sample sample = SampleFrom(input, gpus, processes);
    RequireJson(sample);
    RequireLine(command::SampleText(sample));
    table.Add(sample);
    const std::vector<std::string> lines = table.Lines(screen);
    Require(lines.size() <= screen.rows, "the table has no more lines than the screen");
    for (const std::string& line : lines) {
      Require(IsUtf8(line) && ColumnsOf(line) <= screen.columns,
              "a line is not wider than the screen");
    }
  }
  return 0;
}

}  // namespace kestrel::fuzz

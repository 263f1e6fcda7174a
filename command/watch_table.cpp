#include "command/watch_table.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "command/amounts.h"

namespace kestrel::command {

namespace {

constexpr std::size_t kLabelColumns = 14;
constexpr std::size_t kValueColumns = 20;  // "100.0 %  1023.99 GiB"
constexpr std::size_t kGraphFrom = kLabelColumns + kValueColumns + 2;
constexpr std::size_t kLongestHistory = 1024;  // more than a screen has columns

constexpr std::array<const char*, 9> kBlocks = {" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
constexpr std::array<const char*, 9> kLetters = {" ", ".", ":", "-", "=", "+", "*", "%", "#"};

// Labels and values are ASCII, so a byte is a column.
std::string Cut(std::string text, std::size_t columns) {
  text.resize(std::min(text.size(), columns));
  return text;
}

double Bytes(const std::optional<std::uint64_t>& bytes) {
  return static_cast<double>(bytes.value_or(0));
}

std::string Figure(const std::optional<std::uint64_t>& bytes) {
  return bytes ? SizeText(*bytes) : "unknown";
}

}  // namespace

void WatchTable::Set(std::size_t row, const std::string& label, const std::string& value,
                     double full, double figure) {
  if (row == rows_.size()) {
    rows_.push_back({label, "", full, {}});
  }
  rows_[row].value = value;
  rows_[row].history.push_back(figure);
  if (rows_[row].history.size() > kLongestHistory) {
    rows_[row].history.pop_front();
  }
}

void WatchTable::Add(const Sample& sample) {
  std::size_t row = 0;
  Set(row++, "available RAM", Figure(sample.available_bytes),
      static_cast<double>(sample.physical_bytes), Bytes(sample.available_bytes));
  for (const VramSample& vram : sample.vram) {
    Set(row++, "free VRAM " + std::to_string(vram.device), Figure(vram.free_bytes),
        static_cast<double>(vram.total_bytes), Bytes(vram.free_bytes));
  }
  for (const ProcessSample& process : sample.processes) {
    const std::string value =
        process.running ? PercentText(process.percent) + "  " + Figure(process.resident_bytes)
                        : StateText(process);
    Set(row++, "PID " + std::to_string(process.pid), value, 0,
        process.running ? static_cast<double>(process.percent) : 0);
  }
}

std::string WatchTable::Graph(const Row& row, std::size_t columns) const {
  const auto& steps = blocks_ ? kBlocks : kLetters;
  const std::size_t count = std::min(columns, row.history.size());
  const auto first = row.history.end() - static_cast<std::ptrdiff_t>(count);
  const double largest = count > 0 ? *std::max_element(first, row.history.end()) : 0;
  const double full = row.full > 0 ? row.full : largest;
  std::string graph;
  for (auto figure = first; figure != row.history.end(); ++figure) {
    const double share = full > 0 ? std::clamp(*figure / full, 0.0, 1.0) : 0;
    graph += steps[static_cast<std::size_t>(std::ceil(share * 8))];
  }
  return graph;
}

std::string WatchTable::Line(const Row& row, std::size_t columns) const {
  std::string line = row.label;
  line.resize(std::max(kLabelColumns, line.size() + 1), ' ');
  if (line.size() + row.value.size() < kLabelColumns + kValueColumns) {
    line.append(kLabelColumns + kValueColumns - line.size() - row.value.size(), ' ');
  }
  line += row.value;
  if (columns <= kGraphFrom || line.size() + 2 > kGraphFrom) {
    return Cut(line, columns);
  }
  return line + "  " + Graph(row, columns - kGraphFrom);
}

std::vector<std::string> WatchTable::Lines(ScreenSize size) const {
  std::vector<std::string> lines = {title_};
  for (const Row& row : rows_) {
    lines.push_back(Line(row, size.columns));
  }
  lines.front() = Cut(lines.front(), size.columns);
  if (lines.size() > size.rows) {
    const std::size_t hidden = lines.size() - size.rows + 1;
    lines.resize(size.rows);
    if (size.rows > 1) {
      lines.back() = Cut("... " + std::to_string(hidden) + " more lines", size.columns);
    }
  }
  return lines;
}

}  // namespace kestrel::command

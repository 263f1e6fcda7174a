#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "command/watch_sample.h"

namespace kestrel::command {

struct ScreenSize {
  std::size_t columns;
  std::size_t rows;
};

// The latest samples, and the table that shows them.
class WatchTable {
 public:
  // `blocks` draws graphs with block characters of Unicode instead of ASCII.
  WatchTable(std::string title, bool blocks) : title_(std::move(title)), blocks_(blocks) {}

  void Add(const Sample& sample);

  // The lines of the table, none wider than the screen and no more than it has rows.
  [[nodiscard]] std::vector<std::string> Lines(ScreenSize size) const;

 private:
  struct Row {
    std::string label;
    std::string value;
    double full;  // what fills the graph's height; 0 for the largest value shown
    std::deque<double> history;
  };

  void Set(std::size_t row, const std::string& label, const std::string& value, double full,
           double figure);
  [[nodiscard]] std::string Graph(const Row& row, std::size_t columns) const;
  [[nodiscard]] std::string Line(const Row& row, std::size_t columns) const;

  std::string title_;
  bool blocks_;
  std::vector<Row> rows_;
};

}  // namespace kestrel::command

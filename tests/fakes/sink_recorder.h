#pragma once

#include <string>
#include <string_view>

#include "utils/diagnostic_line.h"

namespace kestrel::tests {

// A destination for diagnostics that keeps the text; a '|' stands for each flush.
class SinkRecorder {
 public:
  [[nodiscard]] kestrel_utils::DiagnosticSink sink() { return {Append, &text_}; }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  static void Append(void* context, std::string_view text, bool flush) noexcept {
    auto& all = *static_cast<std::string*>(context);
    all += text;
    all += flush ? "|" : "";
  }

  std::string text_;
};

}  // namespace kestrel::tests

#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "c/kestrelcore.h"
#include "utils/diagnostic_line.h"

namespace kestrel::c {

// Receives the diagnostics of a meter: keeps them for the caller's result, or writes them to
// standard error where the caller has none.
class Message {
 public:
  explicit Message(const kestrel_result* result) noexcept : kept_(result != nullptr) {}

  // Valid as long as this object.
  [[nodiscard]] kestrel_utils::DiagnosticSink Sink() noexcept { return {Take, this}; }

  // Whether there was any.
  [[nodiscard]] bool IsReported() const noexcept { return reported_; }

  // The text without its last newline, or `otherwise` if there was none.
  [[nodiscard]] const char* TextOr(const char* otherwise) noexcept;

 private:
  static void Take(void* self, std::string_view text, bool flush) noexcept;
  void Append(std::string_view text) noexcept;

  std::array<char, KESTREL_MESSAGE_SIZE> text_{};
  std::size_t size_ = 0;
  bool kept_;
  bool reported_ = false;
};

}  // namespace kestrel::c

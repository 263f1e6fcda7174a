#pragma once

#include <iostream>
#include <sstream>
#include <streambuf>
#include <string>

namespace kestrel::tests {

// Collects std::cout and std::cerr in one text while it lives, so that their order shows.
class OutputRecorder {
 public:
  OutputRecorder() : cout_(std::cout.rdbuf(&text_)), cerr_(std::cerr.rdbuf(&text_)) {}
  OutputRecorder(const OutputRecorder&) = delete;
  OutputRecorder& operator=(const OutputRecorder&) = delete;
  ~OutputRecorder() {
    std::cout.rdbuf(cout_);
    std::cerr.rdbuf(cerr_);
  }

  [[nodiscard]] std::string text() const { return text_.str(); }
  [[nodiscard]] int flushes() const { return text_.flushes; }

 private:
  struct Buffer : std::stringbuf {
    int sync() override {
      ++flushes;
      return 0;
    }
    int flushes = 0;
  };

  Buffer text_;
  std::streambuf* cout_;
  std::streambuf* cerr_;
};

// Returns what the routine prints.
template <typename Routine>
std::string OutputOf(Routine routine) {
  const OutputRecorder output;
  routine();
  return output.text();
}

}  // namespace kestrel::tests

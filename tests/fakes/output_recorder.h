#pragma once

#include <iostream>
#include <sstream>
#include <streambuf>
#include <string>

namespace kestrel::tests {

// Collects std::cout and std::cerr in one text while it lives, in the order in which a user sees
// them: what is written to std::cout appears when it is flushed, as in a pipe or a file.
class OutputRecorder {
 public:
  OutputRecorder()
      : buffer_(text_), cout_(std::cout.rdbuf(&buffer_)), cerr_(std::cerr.rdbuf(&text_)) {}
  OutputRecorder(const OutputRecorder&) = delete;
  OutputRecorder& operator=(const OutputRecorder&) = delete;
  ~OutputRecorder() {
    std::cout.rdbuf(cout_);
    std::cerr.rdbuf(cerr_);
  }

  [[nodiscard]] std::string text() const { return text_.str(); }
  [[nodiscard]] int flushes() const { return buffer_.flushes; }

 private:
  struct Buffer : std::stringbuf {
    explicit Buffer(std::stringbuf& visible) : target(visible) {}

    int sync() override {
      const std::string unflushed = str();
      target.sputn(unflushed.data(), static_cast<std::streamsize>(unflushed.size()));
      str("");
      ++flushes;
      return 0;
    }

    std::stringbuf& target;
    int flushes = 0;
  };

  std::stringbuf text_;
  Buffer buffer_;
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

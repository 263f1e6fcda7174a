#pragma once

#include <iostream>
#include <sstream>
#include <streambuf>
#include <string>

namespace kestrel::fakes {

// Gathers std::cout and std::cerr into one text while it lives, so that their order shows.
class OutputRecorder {
 public:
  OutputRecorder() : cout_(std::cout.rdbuf(text_.rdbuf())), cerr_(std::cerr.rdbuf(text_.rdbuf())) {}
  OutputRecorder(const OutputRecorder&) = delete;
  OutputRecorder& operator=(const OutputRecorder&) = delete;
  ~OutputRecorder() {
    std::cout.rdbuf(cout_);
    std::cerr.rdbuf(cerr_);
  }

  [[nodiscard]] std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::streambuf* cout_;
  std::streambuf* cerr_;
};

// What the routine prints.
template <typename Routine>
std::string OutputOf(Routine routine) {
  const OutputRecorder output;
  routine();
  return output.text();
}

}  // namespace kestrel::fakes

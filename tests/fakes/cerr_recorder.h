#pragma once

#include <ios>
#include <iostream>
#include <streambuf>
#include <string>
#include <vector>

namespace kestrel::tests {

// Stands in for std::cerr's buffer while it lives: keeps each write and counts the flushes that
// were asked for (the stream's own flush after every write is turned off).
class CerrRecorder : private std::streambuf {
 public:
  CerrRecorder()
      : buffer_(std::cerr.rdbuf(this)),
        flags_(std::cerr.flags()),
        exceptions_(std::cerr.exceptions()) {
    std::cerr.unsetf(std::ios::unitbuf);
  }
  CerrRecorder(const CerrRecorder&) = delete;
  CerrRecorder& operator=(const CerrRecorder&) = delete;
  ~CerrRecorder() override {
    std::cerr.exceptions(std::ios::goodbit);
    std::cerr.rdbuf(buffer_);  // also clears the error state
    std::cerr.flags(flags_);
    std::cerr.exceptions(exceptions_);
  }

  // From now on every write and flush fails, and std::cerr throws of it.
  void Throw() {
    failing_ = true;
    std::cerr.exceptions(std::ios::badbit | std::ios::failbit);
  }

  [[nodiscard]] std::string text() const {
    std::string all;
    for (const auto& write : writes_) {
      all += write;
    }
    return all;
  }
  [[nodiscard]] const std::vector<std::string>& writes() const { return writes_; }
  [[nodiscard]] int flushes() const { return flushes_; }
  [[nodiscard]] int refused() const { return refused_; }

 private:
  std::streamsize xsputn(const char* text, std::streamsize size) override {
    if (failing_) {
      ++refused_;
      return 0;
    }
    writes_.emplace_back(text, static_cast<std::size_t>(size));
    return size;
  }
  int_type overflow(int_type character) override {
    const char text = traits_type::to_char_type(character);
    return xsputn(&text, 1) == 1 ? character : traits_type::eof();
  }
  int sync() override {
    ++flushes_;
    return failing_ ? -1 : 0;
  }

  std::streambuf* buffer_;
  std::ios::fmtflags flags_;
  std::ios::iostate exceptions_;
  std::vector<std::string> writes_;
  int flushes_ = 0;
  int refused_ = 0;
  bool failing_ = false;
};

}  // namespace kestrel::tests

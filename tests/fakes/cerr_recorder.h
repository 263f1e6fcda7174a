#pragma once

#include <ios>
#include <iostream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <vector>

namespace kestrel::tests {

// Replaces std::cerr's buffer while it lives. Records each write, and counts the flushes that were
// asked for; std::ios::unitbuf, which asks for one after every write, is off.
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

  // From now on every write is refused, as by a full pipe that does not block.
  void Refuse() { failure_ = Failure::kRefuse; }

  // From now on every write throws.
  void Throw() { failure_ = Failure::kThrow; }

  [[nodiscard]] std::string text() const {
    std::string all;
    for (const auto& write : writes_) {
      all += write;
    }
    return all;
  }
  [[nodiscard]] const std::vector<std::string>& writes() const { return writes_; }
  [[nodiscard]] int flushes() const { return flushes_; }
  [[nodiscard]] int failed_writes() const { return failed_writes_; }

 private:
  enum class Failure { kNone, kRefuse, kThrow };

  std::streamsize xsputn(const char* text, std::streamsize size) override {
    if (failure_ == Failure::kNone) {
      writes_.emplace_back(text, static_cast<std::size_t>(size));
      return size;
    }
    ++failed_writes_;
    if (failure_ == Failure::kThrow) {
      throw std::runtime_error("write");
    }
    return 0;
  }
  int_type overflow(int_type character) override {
    const char text = traits_type::to_char_type(character);
    return xsputn(&text, 1) == 1 ? character : traits_type::eof();
  }
  int sync() override {
    ++flushes_;
    return failure_ == Failure::kNone ? 0 : -1;
  }

  std::streambuf* buffer_;
  std::ios::fmtflags flags_;
  std::ios::iostate exceptions_;
  std::vector<std::string> writes_;
  int flushes_ = 0;
  int failed_writes_ = 0;
  Failure failure_ = Failure::kNone;
};

}  // namespace kestrel::tests

#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace kestrel::platform {

// A path put together piece by piece, without heap memory.
class PathBuffer {
 public:
  // With the closing NUL. A quarter of what Linux opens (PATH_MAX), and twice what container
  // runtimes build: threads of a host may have little stack.
  static constexpr std::size_t kCapacity = 1024;

  PathBuffer() noexcept { text_[0] = '\0'; }

  // False, and the path unchanged, if the piece does not fit.
  [[nodiscard]] bool Append(std::string_view piece) noexcept {
    if (piece.size() >= text_.size() - size_) {
      return false;
    }
    std::copy(piece.begin(), piece.end(), text_.begin() + size_);
    Truncate(size_ + piece.size());
    return true;
  }

  // Back to the first `size` bytes; no more than there are.
  void Truncate(std::size_t size) noexcept {
    size_ = size;
    text_[size_] = '\0';
  }

  [[nodiscard]] std::string_view view() const noexcept { return {text_.data(), size_}; }
  [[nodiscard]] const char* c_str() const noexcept { return text_.data(); }

 private:
  std::array<char, kCapacity> text_;  // as much of it as is used
  std::size_t size_ = 0;
};

}  // namespace kestrel::platform

#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace kestrel::platform {

// A path of less than Capacity bytes that is built piece by piece, without heap memory.
template <std::size_t Capacity>
class BasicPathBuffer {
 public:
  static constexpr std::size_t kCapacity = Capacity;  // includes the terminating NUL

  BasicPathBuffer() noexcept { text_[0] = '\0'; }

  // Returns false, and leaves the path unchanged, if the piece does not fit.
  [[nodiscard]] bool Append(std::string_view piece) noexcept {
    if (piece.size() >= text_.size() - size_) {
      return false;
    }
    std::copy(piece.begin(), piece.end(), text_.begin() + size_);
    Truncate(size_ + piece.size());
    return true;
  }

  // Keeps the first `size` bytes; `size` must not exceed the current size.
  void Truncate(std::size_t size) noexcept {
    size_ = size;
    text_[size_] = '\0';
  }

  [[nodiscard]] std::string_view view() const noexcept { return {text_.data(), size_}; }
  [[nodiscard]] const char* c_str() const noexcept { return text_.data(); }

 private:
  std::array<char, Capacity> text_;  // only the used part and its NUL are initialised
  std::size_t size_ = 0;
};

// The path of a file. Linux accepts four times as much (PATH_MAX), but the threads of a host may
// have little stack, and the paths that container runtimes build are about half this long.
using PathBuffer = BasicPathBuffer<1024>;

}  // namespace kestrel::platform

#include "c/message.h"

#include <algorithm>

namespace kestrel::c {

const char* Message::TextOr(const char* otherwise) noexcept {
  if (size_ == 0) {
    return otherwise;
  }
  if (text_[size_ - 1] == '\n') {
    text_[--size_] = '\0';
  }
  return text_.data();
}

void Message::Take(void* self, std::string_view text, bool flush) noexcept {
  Message& message = *static_cast<Message*>(self);
  message.reported_ = true;
  if (message.kept_) {
    message.Append(text);
  } else {
    kestrel_utils::kStandardError.write(kestrel_utils::kStandardError.context, text, flush);
  }
}

// Keeps the beginning, since the first failure is the one to look at, and room for the NUL.
void Message::Append(std::string_view text) noexcept {
  const std::size_t count = std::min(text.size(), text_.size() - 1 - size_);
  std::copy_n(text.data(), count, text_.data() + size_);
  size_ += count;
}

}  // namespace kestrel::c

#include "platform/linux/line_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/linux/optional_file.h"
#include "platform/linux/path_buffer.h"

namespace kestrel::platform {

namespace {

// The kernel generates such a text while it is read, and no more than was asked for. Small reads
// keep a search short that ends at an early line.
constexpr std::size_t kReadSize = 1024;
constexpr int kMaximumReads = 1024;

// Returns "", which no file has, if the path is too long.
PathBuffer PathOf(std::string_view directory, std::string_view name) noexcept {
  PathBuffer path;
  if (!path.Append(directory) || !path.Append(name)) {
    path.Truncate(0);
  }
  return path;
}

}  // namespace

LineReader::LineReader(std::string_view directory, std::string_view name) noexcept
    : file_(AT_FDCWD, PathOf(directory, name).c_str()),
      failed_(!file_.is_open() && !MeansAbsent(errno)),
      reads_left_(file_.is_open() ? kMaximumReads : 0) {}

std::optional<std::string_view> LineReader::Next() noexcept {
  for (;;) {
    const std::string_view text(buffer_.data() + begin_, end_ - begin_);
    const std::size_t length = text.find('\n');
    if (length != std::string_view::npos) {
      begin_ += length + 1;
      if (!std::exchange(in_long_line_, false)) {
        return text.substr(0, length);
      }
    } else if (text.size() == buffer_.size()) {
      begin_ = end_;
      if (!std::exchange(in_long_line_, true)) {
        return text;
      }
    } else if (!Refill()) {
      return std::nullopt;
    }
  }
}

bool LineReader::Refill() noexcept {
  std::copy(buffer_.begin() + begin_, buffer_.begin() + end_, buffer_.begin());
  end_ -= begin_;
  begin_ = 0;
  const std::size_t size = std::min(kReadSize, buffer_.size() - end_);
  ssize_t count = -1;
  while (count < 0 && reads_left_ > 0) {
    --reads_left_;
    count = read(file_.get(), buffer_.data() + end_, size);
    if (count < 0 && errno != EINTR) {
      failed_ = !MeansAbsent(errno);
      break;
    }
  }
  end_ += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  return count > 0;
}

}  // namespace kestrel::platform

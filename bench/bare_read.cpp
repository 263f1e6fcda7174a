#include "bench/bare_read.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace kestrel::bench {

std::size_t ReadBare(const std::vector<FileToRead>& files) {
  std::array<char, 4096> buffer;  // the kernel returns at most a page of such files in one read
  std::size_t total = 0;
  for (const FileToRead& file : files) {
    const int descriptor = open(file.path.c_str(), O_RDONLY | O_CLOEXEC);
    std::size_t left = file.bytes;
    ssize_t count = 1;
    while (left > 0 && count > 0) {
      count = read(descriptor, buffer.data(), std::min(left, buffer.size()));
      left -= static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    close(descriptor);
    total += file.bytes - left;
  }
  return total;
}

}  // namespace kestrel::bench

#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kestrel::bench {

// A file, and how many bytes of it an answer needs.
struct FileToRead {
  std::string path;
  std::size_t bytes = 0;
};

// Opens, reads and closes each file, and does nothing else. Returns how many bytes it read.
std::size_t ReadBare(const std::vector<FileToRead>& files);

}  // namespace kestrel::bench

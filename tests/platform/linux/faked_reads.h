#pragma once

#include <cstddef>
#include <vector>

namespace kestrel::tests {

// What this program's calls of read and pread do.
struct ReadsFake {
  std::vector<int> errors;  // with which the next calls fail, the first one first; 0: none
  std::size_t most = 0;     // bytes that a call reads, as a file system in user space does; 0: any
  int calls = 0;            // so far
};

// A test assigns a new one at its begin and at its end.
ReadsFake& FakedReads();

}  // namespace kestrel::tests

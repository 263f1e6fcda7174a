#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "bench/bare_read.h"

namespace kestrel::bench {

// What one call does.
struct Trace {
  std::uint64_t system_calls = 0;
  std::uint64_t allocations = 0;
  std::vector<FileToRead> files;  // the regular files that it reads, in order
};

// Runs the call in a child process under ptrace(2); with `warm_up` once before that too. The
// threads that it starts are not traced. Ends this process if it may not trace.
Trace TraceCall(const std::function<void()>& call, bool warm_up);

}  // namespace kestrel::bench

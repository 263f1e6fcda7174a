#pragma once

#include <string>

namespace kestrel::fuzz {

// What this thread gets from the kernel as long as it exists: every path below /proc and /sys that
// is opened leads to the file of that path below `root`, and these answers.
struct KernelFiles {
  std::string root;
  std::string self;     // the target of the link /proc/self
  int clock_error = 0;  // of asking for the CPU clock of a process, which is that of this one

  explicit KernelFiles(std::string directory);
  KernelFiles(const KernelFiles&) = delete;
  KernelFiles& operator=(const KernelFiles&) = delete;
  ~KernelFiles();
};

}  // namespace kestrel::fuzz

#pragma once

#include <string>

namespace kestrel::fuzz {

// As long as it exists, this thread opens the file below `root` for each path below /proc and /sys,
// and gets these answers from the kernel.
struct KernelFiles {
  std::string root;
  std::string self;     // the target of the link /proc/self
  int clock_error = 0;  // of clock_getcpuclockid; the clock of any process is that of this one

  explicit KernelFiles(std::string directory);
  KernelFiles(const KernelFiles&) = delete;
  KernelFiles& operator=(const KernelFiles&) = delete;
  ~KernelFiles();
};

}  // namespace kestrel::fuzz

#pragma once

#include <sys/types.h>

#include <string>

namespace kestrel::tests {

// What this program's calls of open, openat, readlink, fstat and fstatfs return. They are the
// kernel's own unless `root` is set. A call that fails writes its figure all the same.
struct FilesFake {
  std::string root;         // absolute paths are opened below it
  long file_system = 0;     // of every open file
  ino_t inode = 0;          // of every open file
  std::string link_target;  // of /proc/thread-self/ns/cgroup, the only link
  bool fstatfs_fails = false;
  bool fstat_fails = false;
  bool readlink_fails = false;
};

// A test assigns a new one at its end.
FilesFake& FakedFiles();

}  // namespace kestrel::tests

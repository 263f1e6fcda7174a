#pragma once

#include <filesystem>
#include <string>

namespace kestrel::tests {

// The files of an invented machine, in a temporary directory that the destructor removes.
class MachineTree {
 public:
  MachineTree();
  MachineTree(const MachineTree&) = delete;
  MachineTree& operator=(const MachineTree&) = delete;
  ~MachineTree();

  [[nodiscard]] std::string root() const { return root_.string(); }

  // Writes a file; `path` is that on the machine and begins with "/".
  void Write(const std::string& path, const std::string& text) const;

  void Remove(const std::string& path) const;

  // Creates a symbolic link to a file of the machine that runs the test.
  void Link(const std::string& path, const std::string& target) const;

  // Creates a directory instead of a file: opening it succeeds, reading it fails with EISDIR.
  void MakeUnreadable(const std::string& path) const;

  // The two files by which a process finds its memory group.
  void WriteGroups(const std::string& text) const { Write("/proc/thread-self/cgroup", text); }
  void WriteMounts(const std::string& text) const { Write("/proc/thread-self/mountinfo", text); }

 private:
  std::filesystem::path root_;
};

// Lines of mountinfo. Roots and mount points are given escaped.
std::string MountV2(const std::string& root, const std::string& point);
std::string MountV1(const std::string& root, const std::string& point);

}  // namespace kestrel::tests

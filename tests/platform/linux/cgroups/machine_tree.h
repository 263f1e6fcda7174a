#pragma once

#include <filesystem>
#include <string>

namespace kestrel::testing {

// The files of a made-up machine, in a directory of their own that lasts as long as the object.
class MachineTree {
 public:
  MachineTree();
  MachineTree(const MachineTree&) = delete;
  MachineTree& operator=(const MachineTree&) = delete;
  ~MachineTree();

  [[nodiscard]] std::string root() const { return root_.string(); }

  // `path` as on the machine, beginning with "/".
  void Write(const std::string& path, const std::string& text) const;

  // The two files by which a process finds its group.
  void WriteGroups(const std::string& text) const { Write("/proc/thread-self/cgroup", text); }
  void WriteMounts(const std::string& text) const { Write("/proc/thread-self/mountinfo", text); }

 private:
  std::filesystem::path root_;
};

// Lines of mountinfo. Roots and mount points are given as they stand there, escaped.
std::string MountV2(const std::string& root, const std::string& point);
std::string MountV1(const std::string& root, const std::string& point);

}  // namespace kestrel::testing

#pragma once

#include <cstdint>
#include <string>

namespace kestrel::tests {

// The memory hierarchy of this machine, where distributions mount it. The tests create groups below
// its root.
struct Hierarchy {
  bool is_v2 = false;
  std::string top;
};

// Returns why groups with a memory limit cannot be created here, or "" after filling `hierarchy`.
std::string FindHierarchy(Hierarchy& hierarchy);

// A memory group that exists as long as the object. A failure to create, set up or remove it fails
// the test.
class ControlGroup {
 public:
  ControlGroup(const Hierarchy& hierarchy, const std::string& parent, const std::string& name);
  ControlGroup(const ControlGroup&) = delete;
  ControlGroup& operator=(const ControlGroup&) = delete;
  ~ControlGroup();

  [[nodiscard]] const std::string& directory() const { return directory_; }

  // Limits the RAM and forbids swap. Otherwise a process that is meant to fail would first fill the
  // machine's swap.
  void Limit(std::uint64_t bytes);
  // Gives the groups in this one the memory controller. In version 1 they always have it.
  void PassDown();
  // Moves the calling process into the group. The memory that it already uses stays charged to its
  // former group.
  [[nodiscard]] bool Enter() const;
  [[nodiscard]] std::uint64_t Usage() const;

 private:
  bool is_v2_;
  std::string directory_;
};

}  // namespace kestrel::tests

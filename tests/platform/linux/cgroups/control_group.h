#pragma once

#include <cstdint>
#include <string>

namespace kestrel::testing {

// The memory hierarchy of this machine, at the place where distributions mount it: the tests make
// groups of their own below its root.
struct Hierarchy {
  bool is_v2 = false;
  std::string top;
};

// Why groups with a memory limit cannot be made here; empty if they can, with `hierarchy` filled.
std::string FindHierarchy(Hierarchy& hierarchy);

// A memory group that exists as long as the object. A failure to make, set up or remove it fails
// the test.
class ControlGroup {
 public:
  ControlGroup(const Hierarchy& hierarchy, const std::string& parent, const std::string& name);
  ControlGroup(const ControlGroup&) = delete;
  ControlGroup& operator=(const ControlGroup&) = delete;
  ~ControlGroup();

  [[nodiscard]] const std::string& directory() const { return directory_; }

  // Limits the RAM, and allows no swap beyond it: what is to fail would otherwise fill the
  // machine's swap first.
  void Limit(std::uint64_t bytes);
  // Lets groups within this one account for memory. Version 1 always does.
  void PassDown();
  // Moves the calling process into the group. What it used before stays with its former group.
  [[nodiscard]] bool Enter() const;
  [[nodiscard]] std::uint64_t Usage() const;

 private:
  bool is_v2_;
  std::string directory_;
};

}  // namespace kestrel::testing

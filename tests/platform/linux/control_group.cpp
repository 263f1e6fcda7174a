#include "tests/platform/linux/control_group.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <iterator>
#include <thread>

namespace kestrel::tests {

namespace {

std::string ReadAll(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

bool Write(const std::string& path, const std::string& text) {
  std::ofstream file(path);
  file << text << std::flush;
  return file.good();
}

}  // namespace

std::string FindHierarchy(Hierarchy& hierarchy) {
  if (geteuid() != 0) {
    return "Only root may create memory cgroups.";
  }
  const std::string v1 = "/sys/fs/cgroup/memory";
  const std::string v2 = "/sys/fs/cgroup";
  hierarchy.is_v2 = access((v1 + "/memory.limit_in_bytes").c_str(), F_OK) != 0;
  hierarchy.top = hierarchy.is_v2 ? v2 : v1;
  if (hierarchy.is_v2 &&
      ReadAll(v2 + "/cgroup.subtree_control").find("memory") == std::string::npos) {
    return "There is no memory cgroup hierarchy in " + v1 + ", and " + v2 +
           "/cgroup.subtree_control does not pass the memory controller down.";
  }
  const std::string trial = hierarchy.top + "/kestrelcore-trial-" + std::to_string(getpid());
  if (mkdir(trial.c_str(), 0755) != 0) {
    return "A cgroup cannot be created in " + hierarchy.top + ": " + std::strerror(errno) + ".";
  }
  rmdir(trial.c_str());
  return "";
}

ControlGroup::ControlGroup(const Hierarchy& hierarchy, const std::string& parent,
                           const std::string& name)
    : is_v2_(hierarchy.is_v2), directory_(parent + "/" + name) {
  EXPECT_EQ(mkdir(directory_.c_str(), 0755), 0) << directory_ << ": " << std::strerror(errno);
}

// A group stays busy for a moment after its last process has been reaped, however long that is on a
// busy machine.
ControlGroup::~ControlGroup() {
  int result = -1;
  while ((result = rmdir(directory_.c_str())) != 0 && errno == EBUSY) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  EXPECT_EQ(result, 0) << directory_ << " could not be removed: " << std::strerror(errno);
}

void ControlGroup::Limit(std::uint64_t bytes) {
  const std::string text = std::to_string(bytes);
  EXPECT_TRUE(Write(directory_ + (is_v2_ ? "/memory.max" : "/memory.limit_in_bytes"), text));
  // A kernel that does not account for swap has neither file.
  const std::string swap =
      directory_ + (is_v2_ ? "/memory.swap.max" : "/memory.memsw.limit_in_bytes");
  EXPECT_TRUE(access(swap.c_str(), F_OK) != 0 || Write(swap, is_v2_ ? "0" : text));
}

void ControlGroup::PassDown() {
  EXPECT_TRUE(!is_v2_ || Write(directory_ + "/cgroup.subtree_control", "+memory"));
}

bool ControlGroup::Enter() const { return Write(directory_ + "/cgroup.procs", "0"); }

std::uint64_t ControlGroup::Usage() const {
  return std::stoull(ReadAll(directory_ + (is_v2_ ? "/memory.current" : "/memory.usage_in_bytes")));
}

}  // namespace kestrel::tests

// The lookup of a process's memory group over made-up machines, against a second implementation.
// The input describes a tree of files (made_up_tree.h). If it begins with an empty line, another
// thread than the process's first looks.

#include <thread>

#include "fuzz/machine_reference.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "platform/linux/cgroup_location.h"

namespace kestrel::fuzz {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string description = TextOf(data, size);
  const bool by_first_thread = description.substr(0, 1) != "\n";
  const MadeUpTree tree(description);
  bool failed = false;
  std::optional<platform::MemoryCgroup> group;
  const auto look = [&] { group = platform::FindMemoryCgroup(tree.root(), failed); };
  if (by_first_thread) {
    look();
  } else {
    std::thread(look).join();
  }
  const GroupLookup expected = GroupOf(tree, by_first_thread);
  if (group) {
    const std::string directory(group->directory.view());
    Require(directory.rfind(tree.root() + "/", 0) == 0, "the directory is below the root");
    Require(group->top_length <= directory.size(), "the topmost ancestor is an ancestor");
    Require(directory.size() + sizeof("/memory.memsw.limit_in_bytes") <=
                platform::PathBuffer::kCapacity,
            "the paths of the group's files fit");
  }
  if (tree.was_left()) {
    return 0;
  }
  Require(failed == expected.failed, "the lookup fails as the reference does");
  Require(group.has_value() == expected.group.has_value(), "a group is found as by the reference");
  if (group) {
    Require((group->version == platform::CgroupVersion::kV1) == expected.group->is_v1,
            "the version is that of the reference");
    Require(group->directory.view() == expected.group->directory,
            "the directory is that of the reference");
    Require(group->top_length == expected.group->top_length,
            "the topmost ancestor is that of the reference");
  }
  return 0;
}

}  // namespace kestrel::fuzz

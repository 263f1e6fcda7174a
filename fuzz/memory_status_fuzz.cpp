// The memory status of made-up machines, with their groups, limits, settings and swap, against a
// second implementation. The input describes a tree of files (made_up_tree.h).

#include "fuzz/machine_reference.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "platform/linux/memory_status.h"

namespace kestrel::fuzz {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const MadeUpTree tree(TextOf(data, size));
  platform::PathBuffer group;
  const auto status = platform::ReadMemoryStatus(tree.root(), &group);
  const auto expected = StatusOf(tree);
  if (status) {
    Require(status->available_physical <= status->total_physical,
            "no more is available than there is");
  }
  if (tree.was_left()) {
    return 0;
  }
  Require(status.has_value() == expected.has_value(), "there is a status as in the reference");
  if (status) {
    Require(status->total_physical == expected->total, "the total is that of the reference");
    Require(status->available_physical == expected->available,
            "the available RAM is that of the reference");
    Require(status->committable == expected->committable,
            "what can be committed beyond it is that of the reference");
  }
  Require(group.view() == (expected ? expected->group : ""),
          "the group that decides is that of the reference");
  return 0;
}

}  // namespace kestrel::fuzz

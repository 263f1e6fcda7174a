#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/made_up_tree.h"

// A second implementation of what platform/linux makes of the kernel's files, over the files of a
// made-up machine and with plain strings.

namespace kestrel::fuzz {

struct MeminfoFigures {
  std::uint64_t total = 0;
  std::uint64_t available = 0;
  std::uint64_t swap_free = 0;
  std::uint64_t commit_limit = UINT64_MAX;
  std::uint64_t committed = 0;
};
std::optional<MeminfoFigures> MeminfoOf(const std::string& text);

struct StatusFigures {
  std::uint64_t address_space = UINT64_MAX;
  bool has_sys_admin = false;
};
StatusFigures StatusFiguresOf(const std::vector<std::string>& lines);

std::uint64_t ReserveOf(std::uint64_t user, std::uint64_t admin, const StatusFigures& status);

// Counts the processors of a list such as "0-3,8", which ends with a newline.
std::optional<std::uint32_t> CountOfList(const std::string& text);

struct Group {
  bool is_v1 = false;
  std::string directory;
  std::size_t top_length = 0;
};

// What a lookup found, and whether a file that exists could not be read.
struct GroupLookup {
  std::optional<Group> group;
  bool failed = false;
};
GroupLookup GroupOf(const MadeUpTree& tree, bool by_first_thread);

struct Status {
  std::uint64_t total = 0;
  std::uint64_t available = 0;
  std::uint64_t committable = 0;
  std::string group;  // the directory of the memory group that decides; empty if none does
};
// As the process's main thread reads it.
std::optional<Status> StatusOf(const MadeUpTree& tree);

}  // namespace kestrel::fuzz

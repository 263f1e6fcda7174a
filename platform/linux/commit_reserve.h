#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

namespace kestrel::platform {

// The figures that decide how much of the commit limit the kernel keeps from a process under strict
// overcommit (__vm_enough_memory in the kernel's mm/util.c), in bytes. The defaults withhold most.
struct ReserveFigures {
  std::uint64_t user_reserve = 0;   // vm.user_reserve_kbytes
  std::uint64_t admin_reserve = 0;  // vm.admin_reserve_kbytes
  std::uint64_t address_space =     // all that the process has mapped
      std::numeric_limits<std::uint64_t>::max();
  bool has_sys_admin = false;  // CAP_SYS_ADMIN
};

// Takes the address space and the capability from a line of "/proc/<pid>/status", if it is theirs.
void ParseStatusLine(std::string_view line, ReserveFigures& figures) noexcept;

[[nodiscard]] std::uint64_t CommitReserve(const ReserveFigures& figures) noexcept;

// Reads the figures of the calling process below `root`: "" for this machine, or a directory that
// holds the files of another. Sets `failed` if a file that exists could not be read.
[[nodiscard]] std::uint64_t ReadCommitReserve(std::string_view root, bool& failed) noexcept;

}  // namespace kestrel::platform

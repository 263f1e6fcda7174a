#include "platform/linux/commit_reserve.h"

#include <sys/stat.h>

#include <algorithm>
#include <charconv>

#include "platform/linux/line_reader.h"
#include "platform/linux/meminfo.h"
#include "platform/linux/optional_file.h"
#include "platform/linux/path_buffer.h"

namespace kestrel::platform {

namespace {

// Returns the text after `beginning`, or "" if the line does not begin with it.
std::string_view After(std::string_view beginning, std::string_view line) noexcept {
  return line.substr(0, beginning.size()) == beginning ? line.substr(beginning.size()) : "";
}

// Capability sets are hexadecimal without a prefix.
bool HasSysAdmin(std::string_view capabilities) noexcept {
  constexpr std::uint64_t kSysAdmin = std::uint64_t{1} << 21;  // CAP_SYS_ADMIN, linux/capability.h
  std::uint64_t set = 0;  // stays 0 if there is no number, and if it does not fit
  const char* const end = capabilities.data() + capabilities.size();
  return std::from_chars(capabilities.data(), end, set, 16).ptr == end && (set & kSysAdmin) != 0;
}

// The capability counts in the initial user namespace only. Others have maps of all ids too, so
// only the inode identifies the initial one.
bool IsInInitialUserNamespace(std::string_view root) noexcept {
  constexpr ino_t kInitialNamespace = 0xEFFFFFFD;  // PROC_USER_INIT_INO, include/linux/proc_ns.h
  PathBuffer path;
  struct stat own_namespace {};
  return path.Append(root) && path.Append("/proc/thread-self/ns/user") &&
         stat(path.c_str(), &own_namespace) == 0 && own_namespace.st_ino == kInitialNamespace;
}

std::uint64_t ReadKibibytes(std::string_view root, std::string_view name, bool& failed) noexcept {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max() / 1024;
  return std::min(ReadOptionalNumber(root, name, failed).value_or(0), kMost) * 1024;
}

}  // namespace

void ParseStatusLine(std::string_view line, ReserveFigures& figures) noexcept {
  figures.address_space = ParseKibibytes(After("VmSize:\t", line)).value_or(figures.address_space);
  figures.has_sys_admin = figures.has_sys_admin || HasSysAdmin(After("CapEff:\t", line));
}

std::uint64_t CommitReserve(const ReserveFigures& figures) noexcept {
  const std::uint64_t user = std::min(figures.address_space / 32, figures.user_reserve);
  const std::uint64_t admin = figures.has_sys_admin ? 0 : figures.admin_reserve;
  return user + std::min(admin, std::numeric_limits<std::uint64_t>::max() - user);
}

std::uint64_t ReadCommitReserve(std::string_view root, bool& failed) noexcept {
  ReserveFigures figures;
  figures.user_reserve = ReadKibibytes(root, "/proc/sys/vm/user_reserve_kbytes", failed);
  figures.admin_reserve = ReadKibibytes(root, "/proc/sys/vm/admin_reserve_kbytes", failed);
  LineReader lines(root, "/proc/thread-self/status");
  while (const auto line = lines.Next()) {
    ParseStatusLine(*line, figures);
  }
  failed = failed || lines.failed();
  figures.has_sys_admin = figures.has_sys_admin && IsInInitialUserNamespace(root);
  return CommitReserve(figures);
}

}  // namespace kestrel::platform

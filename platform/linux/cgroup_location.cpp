#include "platform/linux/cgroup_location.h"

#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "platform/linux/line_reader.h"
#include "platform/linux/optional_file.h"

namespace kestrel::platform {

namespace {

// The kernel charges memory to the group of the process's main thread; in version 1 the calling
// thread may be in another group. Once the main thread has ended while others run, its group reads
// as "/", and reading its mounts and namespaces fails. The calling thread's files still work then.
constexpr std::string_view kGroupsFile = "/proc/self/cgroup";
constexpr std::string_view kThreadsGroupsFile = "/proc/thread-self/cgroup";
constexpr std::string_view kMountsFile = "/proc/thread-self/mountinfo";
constexpr const char* kNamespaceLink = "/proc/thread-self/ns/cgroup";

// Removes the text up to and including the separator, and returns it without the separator.
std::string_view TakeField(std::string_view& text, char separator) noexcept {
  const std::size_t length = std::min(text.find(separator), text.size());
  const std::string_view field = text.substr(0, length);
  text.remove_prefix(std::min(length + 1, text.size()));
  return field;
}

bool Lists(std::string_view items, std::string_view item) noexcept {
  while (!items.empty()) {
    if (TakeField(items, ',') == item) {
      return true;
    }
  }
  return false;
}

bool IsAbsolute(std::string_view path) noexcept { return path.substr(0, 1) == "/"; }

// With the root as "", every path is a sequence of zero or more "/name".
std::string_view WithoutRootSlash(std::string_view path) noexcept {
  return path == "/" ? std::string_view() : path;
}

// Returns the longest part of the path that names the group or an ancestor and has at most `size`
// bytes.
std::string_view NearestAncestor(std::string_view path, std::size_t size) noexcept {
  return path.size() <= size ? path : path.substr(0, path.rfind('/', size));
}

struct OwnGroup {
  CgroupVersion version = CgroupVersion::kV2;
  BasicPathBuffer<LineReader::kCapacity> path;  // an ancestor's, if the group's own is too long
};

// Returns false if the file names no memory group. Lines are "4:cpu,memory:/path" for version 1 and
// "0::/path" for version 2 (cgroups(7)). The path may contain colons, but no newlines, and is not
// escaped.
bool ReadGroup(std::string_view root, std::string_view groups_file, OwnGroup& own,
               bool& failed) noexcept {
  bool found = false;
  bool memory_v1 = false;
  LineReader lines(root, groups_file);
  while (auto line = memory_v1 ? std::nullopt : lines.Next()) {
    const bool truncated = line->size() == LineReader::kCapacity;
    TakeField(*line, ':');
    const std::string_view controllers = TakeField(*line, ':');
    memory_v1 = Lists(controllers, "memory");
    if ((memory_v1 || controllers.empty()) && IsAbsolute(*line)) {
      own.version = memory_v1 ? CgroupVersion::kV1 : CgroupVersion::kV2;
      own.path.Truncate(0);
      const std::string_view path = WithoutRootSlash(*line);
      found = own.path.Append(truncated ? NearestAncestor(path, path.size() - 1) : path);
    }
  }
  failed = failed || lines.failed();
  return found;
}

// The main thread, which reads this itself, has not ended.
bool ReadOwnGroup(std::string_view root, OwnGroup& own, bool& failed) noexcept {
  const bool found = ReadGroup(root, kGroupsFile, own, failed) &&
                     (!own.path.view().empty() || gettid() == getpid());
  return found || ReadGroup(root, kThreadsGroupsFile, own, failed);
}

struct Mount {
  std::string_view root;   // the group that is visible at the mount point
  std::string_view point;  // both still escaped
};

// A line is "35 31 0:32 <root> <mount point> <options> [<tag>...] - <type> <source> <options>"
// (proc_pid_mountinfo(5)).
std::optional<Mount> ParseMemoryMount(std::string_view line, CgroupVersion version) noexcept {
  constexpr std::string_view kSeparator = " - ";
  const std::size_t separator = line.find(kSeparator);
  if (separator == std::string_view::npos) {
    return std::nullopt;
  }
  std::string_view file_system = line.substr(separator + kSeparator.size());
  const std::string_view type = TakeField(file_system, ' ');
  TakeField(file_system, ' ');
  const bool fits = version == CgroupVersion::kV2
                        ? type == "cgroup2"
                        : type == "cgroup" && Lists(file_system, "memory");
  if (!fits) {
    return std::nullopt;
  }
  for (int field = 0; field < 3; ++field) {
    TakeField(line, ' ');
  }
  const std::string_view mount_root = TakeField(line, ' ');
  const std::string_view point = TakeField(line, ' ');
  if (!IsAbsolute(mount_root) || !IsAbsolute(point)) {
    return std::nullopt;
  }
  return Mount{WithoutRootSlash(mount_root), point};
}

bool IsOctal(char digit) noexcept { return digit >= '0' && digit <= '7'; }

// In mount tables blanks, tabs, newlines and backslashes are written as a backslash and three octal
// digits. This is common: systemd's unit names contain backslashes ("a\x2db.slice").
char TakeUnescaped(std::string_view& text) noexcept {
  if (text.size() >= 4 && text[0] == '\\' && IsOctal(text[1]) && IsOctal(text[2]) &&
      IsOctal(text[3])) {
    const int code = (text[1] - '0') * 64 + (text[2] - '0') * 8 + (text[3] - '0');
    text.remove_prefix(4);
    return static_cast<char>(code);
  }
  const char plain = text.front();
  text.remove_prefix(1);
  return plain;
}

bool AppendUnescaped(PathBuffer& path, std::string_view escaped) noexcept {
  while (!escaped.empty()) {
    const char character = TakeUnescaped(escaped);
    if (!path.Append({&character, 1})) {
      return false;
    }
  }
  return true;
}

bool LeadsOutOf(std::string_view path) noexcept {
  return path.substr(0, 4) == "/../" || path == "/..";
}

// Whether the path consists of steps out of the cgroup namespace alone: "", "/..", "/../..".
bool IsAboveNamespace(std::string_view path) noexcept {
  while (LeadsOutOf(path)) {
    path.remove_prefix(3);
  }
  return path.empty();
}

// Whether a mount whose root is above the cgroup namespace shows an ancestor of the group. The
// names of the groups between that root and the namespace are not known.
bool ShowsAncestorOnly(std::string_view mount_root, std::string_view group) noexcept {
  return LeadsOutOf(mount_root) && IsAboveNamespace(mount_root) && !LeadsOutOf(group);
}

// Returns the group's path relative to the mount's root, or `nullopt` if the mount does not show
// the group. Both paths are relative to the root of the reader's cgroup namespace and leave it by
// "/.."; a "/.." that remains after the mount's root leaves the mount.
std::optional<std::string_view> PathBelow(std::string_view mount_root,
                                          std::string_view group) noexcept {
  while (!mount_root.empty()) {
    if (group.empty() || group.front() != TakeUnescaped(mount_root)) {
      return std::nullopt;
    }
    group.remove_prefix(1);
  }
  const bool whole_name = group.empty() || group.front() == '/';
  return whole_name && !LeadsOutOf(group) ? std::optional(group) : std::nullopt;
}

// Opens the directory, which is that of the mount point, and sets it to that of the group below, or
// of its nearest ancestor whose files have paths that fit. Returns false if no path fits or the
// mount point cannot be opened; `failed` is set if it exists.
bool Place(MemoryCgroup& group, std::string_view below, bool& failed) noexcept {
  constexpr std::size_t kLongestName = sizeof("/memory.memsw.limit_in_bytes");
  constexpr std::size_t kLongestDirectory = PathBuffer::kCapacity - kLongestName;
  PathBuffer& directory = group.directory;
  group.top_length = directory.view().size();
  if (group.top_length > kLongestDirectory) {
    return false;
  }
  group.top = FileDescriptor::OfDirectory(directory.c_str());
  if (!group.top.is_open()) {
    failed = failed || !MeansAbsent(errno);
    return false;
  }
  return directory.Append(NearestAncestor(below, kLongestDirectory - group.top_length));
}

// Whether an open directory is the top of a hierarchy, with all groups below it.
bool IsTopOfHierarchy(const FileDescriptor& directory, CgroupVersion version) noexcept {
  constexpr ino_t kTopOfHierarchy = 1;  // fs/kernfs/dir.c numbers its nodes from 1
  struct statfs file_system {};
  struct stat top {};
  const auto type = version == CgroupVersion::kV2 ? CGROUP2_SUPER_MAGIC : CGROUP_SUPER_MAGIC;
  return fstatfs(directory.get(), &file_system) == 0 && file_system.f_type == type &&
         fstat(directory.get(), &top) == 0 && top.st_ino == kTopOfHierarchy;
}

// The link is read, not followed: it holds the number, and following it takes twice as long.
bool IsInInitialNamespace() noexcept {
  constexpr std::string_view kInitial = "cgroup:[4026531835]";  // PROC_CGROUP_INIT_INO
  std::array<char, kInitial.size() + 1> link;
  const ssize_t size = readlink(kNamespaceLink, link.data(), link.size());
  return size == ssize_t{kInitial.size()} &&
         std::string_view(link.data(), kInitial.size()) == kInitial;
}

// Most machines mount the whole hierarchy at its usual place. A process outside containers is in
// the initial cgroup namespace, so its group's path is relative to that place. Checking both takes
// a sixth of the time in which the kernel writes the mount table.
std::optional<MemoryCgroup> FindAtUsualPlace(const OwnGroup& own, bool& failed) noexcept {
  const char* const point =
      own.version == CgroupVersion::kV2 ? "/sys/fs/cgroup" : "/sys/fs/cgroup/memory";
  MemoryCgroup group;
  group.version = own.version;
  group.top_is_root = true;
  if (!IsInInitialNamespace() || !group.directory.Append(point) ||
      !Place(group, own.path.view(), failed) || !IsTopOfHierarchy(group.top, own.version)) {
    return std::nullopt;
  }
  return group;
}

// How much a mount shows of a group: 0 for none of it, 1 for an ancestor above the names that are
// known, more the longer the part of the group's path is.
using Rank = std::size_t;

Rank PlaceByMount(MemoryCgroup& group, std::string_view root, const Mount& mount,
                  std::string_view path, bool& failed) noexcept {
  const bool ancestor_only = ShowsAncestorOnly(mount.root, path);
  const auto below =
      ancestor_only ? std::optional(std::string_view()) : PathBelow(mount.root, path);
  if (!below || !group.directory.Append(root) || !AppendUnescaped(group.directory, mount.point) ||
      !Place(group, *below, failed)) {
    return 0;
  }
  return ancestor_only ? 1 : 2 + group.directory.view().size() - group.top_length;
}

// Whether the directory is that of a group. It is not if another mount hides the mount point. The
// kernel appends " (deleted)" to the path of a removed group, whose parent still exists.
bool IsGroup(MemoryCgroup& group, bool& failed) noexcept {
  constexpr std::string_view kRemoved = " (deleted)";
  const std::string_view path = group.directory.view();
  const bool removed =
      path.size() >= kRemoved.size() && path.substr(path.size() - kRemoved.size()) == kRemoved;
  if (FileExists(group.BelowTop(), "/cgroup.procs", failed, group.top.get())) {
    return true;
  }
  if (!removed || path.size() <= group.top_length) {
    return false;
  }
  group.directory.Truncate(path.rfind('/'));
  return FileExists(group.BelowTop(), "/cgroup.procs", failed, group.top.get());
}

// Several mounts may show the group, as container runtimes mount only a part of the hierarchy. The
// one that shows the longest part of the group's path, and so the most ancestors, is chosen.
std::optional<MemoryCgroup> FindInMountTable(std::string_view root, const OwnGroup& own,
                                             bool& failed) noexcept {
  const Rank whole_path = 2 + own.path.view().size();
  std::optional<MemoryCgroup> best;
  Rank best_rank = 0;
  LineReader lines(root, kMountsFile);
  while (const auto line = best_rank < whole_path ? lines.Next() : std::nullopt) {
    const auto mount = ParseMemoryMount(*line, own.version);
    MemoryCgroup group;
    group.version = own.version;
    const Rank rank = mount ? PlaceByMount(group, root, *mount, own.path.view(), failed) : 0;
    if (rank > best_rank && IsGroup(group, failed)) {
      best = std::move(group);
      best_rank = rank;
    }
  }
  failed = failed || lines.failed();
  return best;
}

}  // namespace

// The usual place can be checked on this machine only; the files of another are not a mounted
// hierarchy.
std::optional<MemoryCgroup> FindMemoryCgroup(std::string_view root, bool& failed) noexcept {
  OwnGroup own;
  if (!ReadOwnGroup(root, own, failed)) {
    return std::nullopt;
  }
  auto usual = root.empty() ? FindAtUsualPlace(own, failed) : std::nullopt;
  return usual ? std::move(usual) : FindInMountTable(root, own, failed);
}

}  // namespace kestrel::platform

#include "fuzz/machine_reference.h"

#include <algorithm>

#include "fuzz/text_reference.h"

namespace kestrel::fuzz {

namespace {

// What the buffers of platform/linux hold.
constexpr std::size_t kPathSize = 1024;
constexpr std::size_t kLineSize = 2048;
constexpr std::size_t kPageSize = 4096;
constexpr std::size_t kNumberSize = 32;
constexpr std::size_t kSwitchSize = 4;

// The longest directory whose files all have paths that fit.
constexpr std::size_t kLongestDirectory = kPathSize - sizeof("/memory.memsw.limit_in_bytes");

bool Contains(const std::vector<std::string>& list, const std::string& item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

bool BeginsWith(const std::string& text, const std::string& beginning) {
  return text.compare(0, beginning.size(), beginning) == 0;
}

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Reads files of the tree and remembers whether one of them failed.
class Reader {
 public:
  explicit Reader(const MadeUpTree& tree) : tree_(tree) {}

  std::optional<std::string> Text(const std::string& path, std::size_t most) {
    if (path.size() >= kPathSize) {
      return std::nullopt;
    }
    const auto reading = tree_.Read(path);
    failed_ = failed_ || reading.failed;
    return reading.text ? std::optional(reading.text->substr(0, most)) : std::nullopt;
  }

  std::optional<std::uint64_t> Number(const std::string& path) {
    const auto text = Text(path, kNumberSize);
    return text && EndsWith(*text, "\n") ? WholeNumber(text->substr(0, text->size() - 1))
                                         : std::nullopt;
  }

  std::vector<std::string> Lines(const std::string& path) {
    const auto text = Text(path, std::string::npos);
    std::vector<std::string> lines = Split(text.value_or(""), '\n');
    if (lines.back().size() < kLineSize) {
      lines.pop_back();
    }
    for (std::string& line : lines) {
      line.resize(std::min(line.size(), kLineSize));
    }
    return lines;
  }

  bool Exists(const std::string& path) {
    const auto reading = path.size() < kPathSize ? tree_.Read(path) : MadeUpTree::Reading();
    failed_ = failed_ || (reading.failed && !reading.exists);
    return reading.exists;
  }

  bool IsDirectory(const std::string& path) {
    const auto reading = tree_.Read(path);
    failed_ = failed_ || (reading.failed && !reading.exists);
    return reading.exists && !reading.text;
  }

  [[nodiscard]] const std::string& root() const { return tree_.root(); }
  [[nodiscard]] bool failed() const { return failed_; }

 private:
  const MadeUpTree& tree_;
  bool failed_ = false;
};

struct OwnGroup {
  bool is_v1 = false;
  std::string path;
};

std::optional<OwnGroup> GroupInFile(Reader& reader, const std::string& file) {
  std::optional<OwnGroup> own;
  for (const std::string& line : reader.Lines(reader.root() + file)) {
    const std::size_t first = line.find(':');
    const std::size_t second = first == std::string::npos ? first : line.find(':', first + 1);
    const std::string controllers =
        first == std::string::npos ? "" : line.substr(first + 1, second - first - 1);
    std::string path = second == std::string::npos ? "" : line.substr(second + 1);
    const bool is_v1 = Contains(Split(controllers, ','), "memory");
    if ((is_v1 || controllers.empty()) && BeginsWith(path, "/")) {
      if (path == "/") {
        path.clear();
      } else if (line.size() == kLineSize) {
        path.resize(path.rfind('/'));  // the last name may be cut off
      }
      own = OwnGroup{is_v1, path};
    }
    if (is_v1) {
      break;
    }
  }
  return own;
}

struct Mount {
  std::string root;   // escaped
  std::string point;  // not escaped
};

std::string Unescaped(const std::string& text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string digits = text.substr(i + 1, 3);
    const bool is_escape = text[i] == '\\' && digits.size() == 3 &&
                           digits.find_first_not_of("01234567") == std::string::npos;
    plain += is_escape ? static_cast<char>(std::stoi(digits, nullptr, 8)) : text[i];
    i += is_escape ? 3 : 0;
  }
  return plain;
}

std::optional<Mount> MountOf(const std::string& line, bool is_v1) {
  const std::size_t separator = line.find(" - ");
  if (separator == std::string::npos) {
    return std::nullopt;
  }
  std::vector<std::string> file_system = Split(line.substr(separator + 3), ' ');
  file_system.resize(std::max<std::size_t>(file_system.size(), 3));
  std::string options = file_system[2];
  for (std::size_t i = 3; i < file_system.size(); ++i) {
    options += " " + file_system[i];
  }
  const bool fits = is_v1 ? file_system[0] == "cgroup" && Contains(Split(options, ','), "memory")
                          : file_system[0] == "cgroup2";
  std::vector<std::string> fields = Split(line, ' ');
  fields.resize(std::max<std::size_t>(fields.size(), 5));
  if (!fits || !BeginsWith(fields[3], "/") || !BeginsWith(fields[4], "/")) {
    return std::nullopt;
  }
  return Mount{fields[3] == "/" ? "" : fields[3], Unescaped(fields[4])};
}

bool LeadsOut(const std::string& path) { return BeginsWith(path + "/", "/../"); }

bool IsStepsOutOnly(const std::string& path) {
  std::string steps;
  while (steps.size() < path.size()) {
    steps += "/..";
  }
  return steps == path;
}

// Where a mount shows the group, and how much of its path; no group if it shows none of it.
struct Place {
  std::optional<Group> group;
  std::size_t rank = 0;
};

Place PlaceBy(const Mount& mount, const OwnGroup& own, Reader& reader) {
  Group group;
  group.is_v1 = own.is_v1;
  group.directory = reader.root() + mount.point;
  group.top_length = group.directory.size();
  if (group.top_length > kLongestDirectory) {
    return {};
  }
  if (!mount.root.empty() && IsStepsOutOnly(mount.root) && !LeadsOut(own.path)) {
    return reader.IsDirectory(group.directory) ? Place{group, 1} : Place();
  }
  const std::string mount_root = Unescaped(mount.root);
  std::string below = own.path.substr(std::min(own.path.size(), mount_root.size()));
  const bool is_shown = BeginsWith(own.path, mount_root) && !LeadsOut(below) &&
                        (below.empty() || below.front() == '/');
  if (!is_shown || !reader.IsDirectory(group.directory)) {
    return {};
  }
  while (group.top_length + below.size() > kLongestDirectory) {
    below.resize(below.rfind('/'));
  }
  group.directory += below;
  return {group, 2 + below.size()};
}

bool IsGroup(Reader& reader, Group& group) {
  if (reader.Exists(group.directory + "/cgroup.procs")) {
    return true;
  }
  if (!EndsWith(group.directory, " (deleted)") || group.directory.size() <= group.top_length) {
    return false;
  }
  group.directory.resize(group.directory.rfind('/'));
  return reader.Exists(group.directory + "/cgroup.procs");
}

std::optional<Group> FindGroup(Reader& reader, bool by_first_thread) {
  auto own = GroupInFile(reader, "/proc/self/cgroup");
  if (!own || (own->path.empty() && !by_first_thread)) {
    own = GroupInFile(reader, "/proc/thread-self/cgroup");
  }
  Place best;
  if (!own) {
    return best.group;
  }
  for (const std::string& line : reader.Lines(reader.root() + "/proc/thread-self/mountinfo")) {
    const auto mount = MountOf(line, own->is_v1);
    Place place = mount ? PlaceBy(*mount, *own, reader) : Place();
    if (place.rank > best.rank && IsGroup(reader, *place.group)) {
      best = place;
    }
    if (best.rank >= 2 + own->path.size()) {
      break;
    }
  }
  return best.group;
}

// The group's own directory, its parent's and so on up to the topmost visible one.
std::vector<std::string> DirectoriesOf(const Group& group) {
  std::vector<std::string> directories = {group.directory};
  while (directories.back().size() > group.top_length) {
    directories.push_back(directories.back().substr(0, directories.back().rfind('/')));
  }
  return directories;
}

struct Room {
  std::uint64_t physical = UINT64_MAX;
  std::uint64_t swap = UINT64_MAX;
  std::uint64_t memory_and_swap = UINT64_MAX;
  std::optional<std::uint64_t> swappiness = std::nullopt;
  bool zswap_writeback = true;
  std::string tightest;

  [[nodiscard]] std::uint64_t Memory() const { return std::min(physical, memory_and_swap); }
};

std::uint64_t Plus(std::uint64_t left, std::uint64_t right) {
  std::uint64_t sum = 0;
  return __builtin_add_overflow(left, right, &sum) ? UINT64_MAX : sum;
}

std::uint64_t Minus(std::uint64_t left, std::uint64_t right) {
  return left > right ? left - right : 0;
}

std::optional<std::uint64_t> Limit(Reader& reader, const std::string& file) {
  const auto number = reader.Number(file);
  return number && *number >> 62U == 0 ? number : std::nullopt;
}

std::optional<std::uint64_t> Statistic(const std::string& text, const std::string& name) {
  return WholeNumber(AfterBeginning(text, name + " ").value_or(""));
}

std::optional<std::uint64_t> Reclaimable(Reader& reader, const std::string& directory, bool is_v1) {
  const auto text = reader.Text(directory + "/memory.stat", kPageSize);
  const std::string prefix = is_v1 ? "total_" : "";
  const auto inactive = Statistic(text.value_or(""), prefix + "inactive_file");
  const auto active = Statistic(text.value_or(""), prefix + "active_file");
  if (!inactive || !active) {
    return std::nullopt;
  }
  const auto slab = is_v1 ? std::nullopt : Statistic(*text, "slab_reclaimable");
  return Plus(Plus(*inactive, *active), slab.value_or(0) / 2);
}

// What a group may use and what it uses.
struct Counter {
  std::uint64_t limit;
  std::uint64_t usage;

  [[nodiscard]] std::uint64_t Room(std::uint64_t reclaimable) const {
    return Minus(limit, Minus(usage, reclaimable));
  }
};

std::optional<Counter> CounterOf(Reader& reader, const std::string& limit_file,
                                 const std::string& usage_file) {
  const auto limit = Limit(reader, limit_file);
  const auto usage = limit ? reader.Number(usage_file) : std::nullopt;
  return usage ? std::optional(Counter{*limit, *usage}) : std::nullopt;
}

// A file is read only where it can change the result; one that is not read cannot fail.
void NarrowByV2(Reader& reader, const std::string& directory, bool with_swap, Room& room) {
  const auto memory = CounterOf(reader, directory + "/memory.max", directory + "/memory.current");
  if (memory && memory->Room(0) < room.physical) {
    if (const auto reclaimable = Reclaimable(reader, directory, false)) {
      room.physical = std::min(room.physical, memory->Room(*reclaimable));
    }
  }
  if (!with_swap) {
    return;
  }
  const auto swap =
      CounterOf(reader, directory + "/memory.swap.max", directory + "/memory.swap.current");
  room.swap = swap ? std::min(room.swap, swap->Room(0)) : room.swap;
  if (room.zswap_writeback) {
    room.zswap_writeback = reader.Number(directory + "/memory.zswap.writeback").value_or(1) != 0;
  }
}

void NarrowByV1(Reader& reader, const std::string& directory, bool is_own, Room& room) {
  const auto memory =
      CounterOf(reader, directory + "/memory.limit_in_bytes", directory + "/memory.usage_in_bytes");
  if (!memory) {
    return;
  }
  const auto both = CounterOf(reader, directory + "/memory.memsw.limit_in_bytes",
                              directory + "/memory.memsw.usage_in_bytes");
  if (memory->Room(0) >= room.physical && (!both || both->Room(0) >= room.memory_and_swap)) {
    return;
  }
  if (!is_own && reader.Number(directory + "/memory.use_hierarchy").value_or(1) == 0) {
    return;
  }
  if (const auto reclaimable = Reclaimable(reader, directory, true)) {
    room.physical = std::min(room.physical, memory->Room(*reclaimable));
    room.memory_and_swap =
        both ? std::min(room.memory_and_swap, both->Room(*reclaimable)) : room.memory_and_swap;
  }
}

Room RoomOf(Reader& reader, bool with_swap) {
  Room room;
  const auto group = FindGroup(reader, true);
  if (!group) {
    return room;
  }
  if (with_swap && group->is_v1) {
    room.swappiness = reader.Number(group->directory + "/memory.swappiness");
  }
  bool is_own = true;
  for (const std::string& directory : DirectoriesOf(*group)) {
    const std::uint64_t before = room.Memory();
    if (group->is_v1) {
      NarrowByV1(reader, directory, is_own, room);
    } else {
      NarrowByV2(reader, directory, with_swap, room);
    }
    is_own = false;
    if (room.Memory() != before) {
      room.tightest = directory;
    }
  }
  return room;
}

std::uint64_t Reserve(Reader& reader) {
  const std::string settings = reader.root() + "/proc/sys/vm/";
  const auto bytes = [&](const char* name) {
    return std::min(reader.Number(settings + name).value_or(0), UINT64_MAX / 1024) * 1024;
  };
  const std::uint64_t user = bytes("user_reserve_kbytes");
  const std::uint64_t admin = bytes("admin_reserve_kbytes");
  auto status = StatusFiguresOf(reader.Lines(reader.root() + "/proc/thread-self/status"));
  status.has_sys_admin = false;  // no made-up file has the inode of the initial user namespace
  return ReserveOf(user, admin, status);
}

// What may still be committed.
std::uint64_t CommitLeft(Reader& reader, const MeminfoFigures& meminfo) {
  if (reader.Number(reader.root() + "/proc/sys/vm/overcommit_memory") != 2U) {
    return UINT64_MAX;
  }
  return Minus(Minus(meminfo.commit_limit, Reserve(reader)), meminfo.committed);
}

bool Swaps(Reader& reader, const Room& room) {
  const auto swappiness =
      room.swappiness ? room.swappiness : reader.Number(reader.root() + "/proc/sys/vm/swappiness");
  if (swappiness == 0U) {
    return false;
  }
  return room.zswap_writeback ||
         reader.Text(reader.root() + "/sys/module/zswap/parameters/enabled", kSwitchSize) != "Y\n";
}

}  // namespace

std::optional<MeminfoFigures> MeminfoOf(const std::string& text) {
  MeminfoFigures figures;
  const auto take = [&](const char* name, std::uint64_t& figure, bool required) {
    const auto rest = AfterBeginning(text, name);
    const auto bytes = rest ? Kibibytes(*rest) : std::nullopt;
    figure = bytes.value_or(figure);
    return bytes || (!rest && !required);
  };
  const bool total = take("MemTotal:", figures.total, true);
  const bool available = take("MemAvailable:", figures.available, true);
  const bool swap_free = take("SwapFree:", figures.swap_free, true);
  const bool commit_limit = take("CommitLimit:", figures.commit_limit, false);
  const bool committed = take("Committed_AS:", figures.committed, false);
  const bool valid = total && available && swap_free && commit_limit && committed &&
                     EndsWith(text, "\n") && figures.total >= figures.available;
  return valid ? std::optional(figures) : std::nullopt;
}

StatusFigures StatusFiguresOf(const std::vector<std::string>& lines) {
  StatusFigures figures;
  for (const std::string& line : lines) {
    if (BeginsWith(line, "VmSize:\t")) {
      figures.address_space = Kibibytes(line.substr(8)).value_or(figures.address_space);
    }
    if (BeginsWith(line, "CapEff:\t")) {
      std::string digits = line.substr(8);
      const bool is_number = !digits.empty() && digits.find_first_not_of(
                                                    "0123456789abcdefABCDEF") == std::string::npos;
      digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
      // Bit 21 is the second of the sixth digit from the right.
      if (is_number && digits.size() >= 6 && digits.size() <= 16) {
        const int digit = std::stoi(digits.substr(digits.size() - 6, 1), nullptr, 16);
        figures.has_sys_admin = figures.has_sys_admin || digit / 2 % 2 == 1;
      }
    }
  }
  return figures;
}

std::uint64_t ReserveOf(std::uint64_t user, std::uint64_t admin, const StatusFigures& status) {
  return Plus(std::min(user, status.address_space >> 5U), status.has_sys_admin ? 0 : admin);
}

std::optional<std::uint32_t> CountOfList(const std::string& text) {
  constexpr std::uint64_t kLimit = 1'000'000;  // beyond it the parser refuses a number
  if (text.empty() || text.find('\n') != text.size() - 1) {
    return std::nullopt;
  }
  std::uint64_t count = 0;
  std::optional<std::uint64_t> before;
  for (const std::string& range : Split(text.substr(0, text.size() - 1), ',')) {
    const std::vector<std::string> ends = Split(range, '-');
    const auto first = WholeNumber(ends.front());
    const auto last = WholeNumber(ends.back());
    const bool in_order = first && last && *first <= *last && (!before || *before < *first);
    if (ends.size() > 2 || !in_order || *last >= kLimit) {
      return std::nullopt;
    }
    count += *last - *first + 1;
    before = last;
  }
  return static_cast<std::uint32_t>(count);
}

GroupLookup GroupOf(const MadeUpTree& tree, bool by_first_thread) {
  Reader reader(tree);
  const auto group = FindGroup(reader, by_first_thread);
  return {group, reader.failed()};
}

std::optional<Status> StatusOf(const MadeUpTree& tree) {
  Reader reader(tree);
  const auto text = reader.Text(tree.root() + "/proc/meminfo", kPageSize);
  const auto meminfo = MeminfoOf(text.value_or(""));
  if (!meminfo) {
    return std::nullopt;
  }
  const bool with_swap = meminfo->swap_free != 0;
  const Room room = RoomOf(reader, with_swap);
  if (reader.failed()) {
    return std::nullopt;
  }
  const std::uint64_t commit_left = CommitLeft(reader, *meminfo);
  Status status;
  status.total = meminfo->total;
  status.available = std::min(std::min(meminfo->available, room.Memory()), commit_left);
  if (with_swap && Swaps(reader, room)) {
    status.committable =
        std::min({meminfo->swap_free, room.swap, Minus(room.memory_and_swap, status.available),
                  Minus(commit_left, status.available)});
  }
  if (status.available < meminfo->available && status.available == room.Memory()) {
    status.group = room.tightest;
  }
  return reader.failed() ? std::nullopt : std::optional(status);
}

}  // namespace kestrel::fuzz

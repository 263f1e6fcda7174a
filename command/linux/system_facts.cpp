#include "command/system_facts.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "command/amounts.h"

namespace kestrel::command {

namespace {

namespace fs = std::filesystem;

constexpr const char* kVendorAmd = "0x1002";  // PCI vendor id

// The names of a directory that begin with `prefix`, "card2" before "card10"; none if it cannot be
// read.
std::vector<std::string> NamesIn(const fs::path& directory, const std::string& prefix) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(directory, error), end; entry != end; entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (name.compare(0, prefix.size(), prefix) == 0) {
      names.push_back(name);
    }
  }
  std::sort(names.begin(), names.end(), [](const std::string& left, const std::string& right) {
    return left.size() != right.size() ? left.size() < right.size() : left < right;
  });
  return names;
}

// The first word of a file; empty if it cannot be read.
std::string WordIn(const fs::path& file) {
  std::ifstream stream(file);
  std::string word;
  stream >> word;
  return word;
}

std::optional<std::uint64_t> NumberIn(const fs::path& file) {
  return ParseNumber(WordIn(file), UINT64_MAX);
}

// The last name of the path that a link leads to; empty if there is no such link.
std::string LinkedName(const fs::path& link) {
  std::error_code error;
  return fs::read_symlink(link, error).filename().string();
}

std::string GroupName(gid_t group) {
  std::array<char, 4096> buffer{};
  struct group entry {};
  struct group* found = nullptr;
  if (getgrgid_r(group, &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
    return found->gr_name;
  }
  return std::to_string(group);
}

bool IsInGroup(gid_t group) {
  std::vector<gid_t> groups(static_cast<std::size_t>(std::max(getgroups(0, nullptr), 0)));
  const int count = getgroups(static_cast<int>(groups.size()), groups.data());
  groups.resize(static_cast<std::size_t>(std::max(count, 0)));
  return getegid() == group || std::find(groups.begin(), groups.end(), group) != groups.end();
}

// Opens it as the runtime does, since access() does not see the device rules of containers.
DeviceFile ReadDeviceFile(const std::string& root, const std::string& path) {
  DeviceFile file;
  file.path = path;
  struct stat status {};
  if (stat((root + path).c_str(), &status) != 0) {
    return file;
  }
  file.group = GroupName(status.st_gid);
  file.group_may_use = (status.st_mode & S_IRGRP) != 0 && (status.st_mode & S_IWGRP) != 0;
  file.in_group = IsInGroup(status.st_gid);
  const int descriptor = open((root + path).c_str(), O_RDWR | O_CLOEXEC);
  if (descriptor < 0) {
    file.error = std::generic_category().message(errno);
    file.state = FileState::kDenied;
    return file;
  }
  close(descriptor);
  file.state = FileState::kUsable;
  return file;
}

bool IsCardName(const std::string& name) {
  return name.find('-') == std::string::npos;  // "card0-DP-1" is a connector
}

}  // namespace

bool HasDeviceFiles() { return true; }

std::vector<DeviceFile> ReadDeviceFiles(const std::string& root) {
  std::vector<DeviceFile> files = {ReadDeviceFile(root, "/dev/kfd")};
  const auto nodes = NamesIn(root + "/dev/dri", "renderD");
  for (const std::string& node : nodes) {
    files.push_back(ReadDeviceFile(root, "/dev/dri/" + node));
  }
  if (nodes.empty()) {
    files.push_back(ReadDeviceFile(root, "/dev/dri/renderD128"));
  }
  return files;
}

std::vector<Card> ReadCards(const std::string& root) {
  const fs::path drm = root + "/sys/class/drm";
  std::vector<Card> cards;
  for (const std::string& name : NamesIn(drm, "card")) {
    const fs::path device = drm / name / "device";
    if (!IsCardName(name) || WordIn(device / "vendor") != kVendorAmd) {
      continue;
    }
    Card card;
    card.name = name;
    card.slot = LinkedName(device);
    card.driver = LinkedName(device / "driver");
    card.vram_total = NumberIn(device / "mem_info_vram_total");
    card.vram_used = NumberIn(device / "mem_info_vram_used");
    card.gtt_total = NumberIn(device / "mem_info_gtt_total");
    card.gtt_used = NumberIn(device / "mem_info_gtt_used");
    cards.push_back(card);
  }
  return cards;
}

}  // namespace kestrel::command

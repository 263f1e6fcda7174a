// What `kestrel explain` reads of the kernel's files about GPUs, against what was put there. The
// input describes them, one a line:
//
//   card0 0000:03:00.0          a card, and the name of the device that it links to; without a name
//                               the device is a directory, not a link
//    mem_info_vram_total 123|   a file of the last card's device; "|" is a newline
//    driver ../drivers/amdgpu   the link of that name
//   /dev/kfd 0660 44            a device file, its mode and its group; "/dev/kfd/" cannot be opened

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "command/system_facts.h"
#include "fuzz/made_up_tree.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"

namespace kestrel::fuzz {

namespace {

using command::Card;
using command::DeviceFile;
using command::FileState;

struct Device {
  std::string slot;  // the name at the end of the link to it
  std::string driver;
  std::map<std::string, std::string> files;
};

struct Machine {
  std::map<std::string, std::string> cards;  // the path of a card's device
  std::map<std::string, Device> devices;     // by that path
  std::map<std::string, DeviceFile> device_files;
};

std::string AfterLast(const std::string& text, char letter) {
  return text.substr(text.rfind(letter) + 1);  // npos + 1 is 0
}

// The groups of this process, as the kernel lists them.
const std::set<std::string>& OwnGroups() {
  static const std::set<std::string> kGroups = [] {
    std::set<std::string> groups;
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
      std::istringstream words(line);
      std::vector<std::string> fields;
      for (std::string word; words >> word;) {
        fields.push_back(word);
      }
      if (fields.size() > 2 && fields[0] == "Gid:") {
        groups.insert(fields[2]);  // the effective one
      } else if (!fields.empty() && fields[0] == "Groups:") {
        groups.insert(fields.begin() + 1, fields.end());
      }
    }
    return groups;
  }();
  return kGroups;
}

// Puts a device file into the tree, and what has to be read from it into the machine.
void AddDeviceFile(Machine& machine, MadeUpTree& tree, const std::string& line) {
  const std::vector<std::string> words = Split(line, ' ');
  const std::string& path = words[0];
  const bool is_directory = path.back() == '/';
  DeviceFile file;
  file.path = is_directory ? path.substr(0, path.size() - 1) : path;
  const std::string above = file.path.substr(0, file.path.rfind('/'));
  if ((above != "/dev" && above != "/dev/dri") || !tree.Add(path, "")) {
    return;
  }
  const unsigned long bits = words.size() > 1 ? std::strtoul(words[1].c_str(), nullptr, 8) : 0660;
  const auto mode = static_cast<mode_t>(bits & 0777U);
  const auto number = words.size() > 2 ? WholeNumber(words[2]) : std::nullopt;
  const std::string made = tree.root() + file.path;
  auto group = static_cast<gid_t>(number.value_or(getegid()) % 100'000);
  if (chown(made.c_str(), static_cast<uid_t>(-1), group) != 0) {
    group = getegid();
  }
  Require(is_directory || chmod(made.c_str(), mode) == 0, "the mode of a file can be set");
  const struct group* const entry = getgrgid(group);
  file.group = entry != nullptr ? entry->gr_name : std::to_string(group);
  file.group_may_use = !is_directory && (mode & 060U) == 060U;
  file.in_group = OwnGroups().count(std::to_string(group)) == 1;
  const bool may_open = geteuid() == 0 || (mode & 0600U) == 0600U;
  file.state = may_open && !is_directory ? FileState::kUsable : FileState::kDenied;
  machine.device_files[file.path] = file;
}

// Returns the path of the card's device; empty if the file system cannot have it.
std::string AddCard(Machine& machine, MadeUpTree& tree, const std::string& line) {
  const std::string name = line.substr(0, line.find(' '));
  const std::string slot = name.size() < line.size() ? line.substr(name.size() + 1) : "";
  const std::string link = "/sys/class/drm/" + name + "/device";
  if (name.find('/') != std::string::npos || slot.find('/') != std::string::npos) {
    return "";
  }
  const std::string path = slot.empty() ? link : "/sys/devices/" + slot;
  const bool made = slot.empty() ? tree.Add(path + "/", "")
                                 : (machine.devices.count(path) == 1 || tree.Add(path + "/", "")) &&
                                       tree.AddLink(link, "../../../devices/" + slot);
  if (!made) {
    return "";
  }
  machine.cards[name] = path;
  machine.devices[path].slot = slot;
  return path;
}

void AddFile(Device& device, MadeUpTree& tree, const std::string& path, const std::string& line) {
  const std::string name = line.substr(0, line.find(' '));
  std::string text = name.size() < line.size() ? line.substr(name.size() + 1) : "";
  if (name == "driver") {
    device.driver = tree.AddLink(path + "/" + name, text) ? AfterLast(text, '/') : device.driver;
    return;
  }
  std::replace(text.begin(), text.end(), '|', '\n');
  if (tree.Add(path + "/" + name, text)) {
    device.files[name] = text;
  }
}

Machine MachineOf(const std::string& description, MadeUpTree& tree) {
  Machine machine;
  std::string path;
  for (const std::string& line : Split(description, '\n')) {
    if (line.rfind("/dev/", 0) == 0) {
      AddDeviceFile(machine, tree, line);
    } else if (line.rfind(' ', 0) != 0) {
      path = AddCard(machine, tree, line);
    } else if (!path.empty()) {
      AddFile(machine.devices[path], tree, path, line.substr(1));
    }
  }
  return machine;
}

// Returns the first word of a file, without the blanks before it; empty if there is none.
std::string FirstWord(const Device& device, const std::string& file) {
  const std::string kBlanks = " \t\n\v\f\r";
  const auto found = device.files.find(file);
  const std::string text = found != device.files.end() ? found->second : "";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  return begin == std::string::npos
             ? ""
             : text.substr(begin, text.find_first_of(kBlanks, begin) - begin);
}

// The names in the order of their numbers.
template <typename Value>
std::vector<std::string> InOrder(const std::map<std::string, Value>& named,
                                 const std::string& beginning) {
  std::set<std::pair<std::size_t, std::string>> ordered;
  for (const auto& [name, value] : named) {
    if (name.rfind(beginning, 0) == 0) {
      ordered.insert({name.size(), name});
    }
  }
  std::vector<std::string> names;
  for (const auto& [size, name] : ordered) {
    names.push_back(name);
  }
  return names;
}

void RequireCards(const std::vector<Card>& cards, const Machine& machine) {
  std::size_t count = 0;
  for (const std::string& name : InOrder(machine.cards, "card")) {
    const Device& device = machine.devices.at(machine.cards.at(name));
    if (name.find('-') != std::string::npos || FirstWord(device, "vendor") != "0x1002") {
      continue;
    }
    Require(count < cards.size() && cards[count].name == name, "every card of AMD is found");
    const Card& card = cards[count++];
    Require(card.slot == device.slot && card.driver == device.driver,
            "the slot and the driver are where the links lead");
    const auto number = [&](const char* file) { return WholeNumber(FirstWord(device, file)); };
    Require(card.vram_total == number("mem_info_vram_total") &&
                card.vram_used == number("mem_info_vram_used") &&
                card.gtt_total == number("mem_info_gtt_total") &&
                card.gtt_used == number("mem_info_gtt_used"),
            "the figures are those of the reference");
  }
  Require(count == cards.size(), "no other card is found");
}

void RequireDeviceFiles(const std::vector<DeviceFile>& files, const Machine& machine) {
  std::vector<std::string> paths = InOrder(machine.device_files, "/dev/dri/renderD");
  if (paths.empty()) {
    paths = {"/dev/dri/renderD128"};
  }
  paths.insert(paths.begin(), "/dev/kfd");
  Require(files.size() == paths.size(), "the device files are those of the reference");
  for (std::size_t i = 0; i < files.size(); ++i) {
    const auto made = machine.device_files.find(paths[i]);
    DeviceFile expected;
    if (made != machine.device_files.end()) {
      expected = made->second;
    }
    const DeviceFile& file = files[i];
    Require(file.path == paths[i] && file.state == expected.state, "a file is in its state");
    Require(file.group == expected.group && file.in_group == expected.in_group,
            "a file's group is known");
    Require(file.error.empty() == (file.state != FileState::kDenied), "a denial has a reason");
    Require(file.group_may_use == expected.group_may_use,
            "the mode says whether the group may use a file");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  MadeUpTree tree("");
  const Machine machine = MachineOf(TextOf(data, size), tree);
  RequireCards(command::ReadCards(tree.root()), machine);
  RequireDeviceFiles(command::ReadDeviceFiles(tree.root()), machine);
  return 0;
}

}  // namespace kestrel::fuzz

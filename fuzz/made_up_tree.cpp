#include "fuzz/made_up_tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "fuzz/property.h"
#include "fuzz/text_reference.h"

namespace kestrel::fuzz {

namespace {

constexpr std::size_t kLongestName = 255;   // NAME_MAX
constexpr std::size_t kLongestPath = 1200;  // more than what is tested accepts
constexpr std::size_t kMostFiles = 64;

std::string MakeRoot() {
  std::string root = (std::filesystem::temp_directory_path() / "fuzz-XXXXXX").string();
  Require(mkdtemp(root.data()) != nullptr, "a temporary directory can be made");
  return root;
}

// One for the process, so that a run makes the files alone.
const std::string& Root() {
  struct Directory {
    std::string path = MakeRoot();
    ~Directory() {
      std::error_code ignored;
      std::filesystem::remove_all(path, ignored);
    }
  };
  static const Directory directory;
  return directory.path;
}

// The names of a path that is to be made; empty if a file system could not have it.
std::vector<std::string> NamesOf(const std::string& path) {
  std::vector<std::string> names = Split(path, '/');
  names.erase(names.begin());
  for (const std::string& name : names) {
    const bool usable = !name.empty() && name != "." && name != ".." &&
                        name.size() <= kLongestName && name.find('\0') == std::string::npos;
    if (!usable || path.size() > kLongestPath) {
      return {};
    }
  }
  return names;
}

std::string Joined(const std::string& root, const std::vector<std::string>& names,
                   std::size_t count) {
  std::string path = root;
  for (std::size_t i = 0; i < count; ++i) {
    path += "/" + names[i];
  }
  return path;
}

void WriteFile(const std::string& path, const std::string& text) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const bool written =
      file >= 0 && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  close(file);
  Require(written, "a file of the tree can be written");
}

}  // namespace

MadeUpTree::MadeUpTree(const std::string& description) : root_(Root()) {
  std::string path;
  std::string text;
  for (const std::string& line : Split(description, '\n')) {
    if (line.empty() || line.front() != '=') {
      text += line + "\n";
      continue;
    }
    Add(path, text);
    path = line.substr(1);
    text.clear();
  }
  if (!text.empty()) {
    text.pop_back();  // the newline that the description does not have
  }
  Add(path, text);
}

// In reverse order what is in a directory comes before the directory.
MadeUpTree::~MadeUpTree() {
  for (auto node = nodes_.rbegin(); node != nodes_.rend(); ++node) {
    const std::string path = Joined(root_, node->first, node->first.size());
    static_cast<void>(node->second ? unlink(path.c_str()) : rmdir(path.c_str()));
  }
}

bool MadeUpTree::Add(const std::string& path, const std::string& text) {
  const bool is_directory = !path.empty() && path.back() == '/';
  const Path names = MakePlace(is_directory ? path.substr(0, path.size() - 1) : path, is_directory);
  if (!names.empty() && !is_directory) {
    WriteFile(Joined(root_, names, names.size()), text);
    nodes_[names] = text;
  }
  return !names.empty();
}

bool MadeUpTree::AddLink(const std::string& path, const std::string& target) {
  constexpr std::size_t kLongestTarget = 4095;  // PATH_MAX with its NUL
  const bool usable =
      !target.empty() && target.size() <= kLongestTarget && target.find('\0') == std::string::npos;
  const Path names = usable ? MakePlace(path, false) : Path();
  if (!names.empty()) {
    Require(symlink(target.c_str(), Joined(root_, names, names.size()).c_str()) == 0,
            "a link of the tree can be made");
    nodes_[names] = target;
  }
  return !names.empty();
}

// Makes the directories above a new node, and the node too if it is one. Returns its path; empty if
// there can be no such node.
MadeUpTree::Path MadeUpTree::MakePlace(const std::string& path, bool is_directory) {
  if (path.empty() || path.front() != '/' || nodes_.size() > kMostFiles) {
    return {};
  }
  const Path names = NamesOf(path);
  if (names.empty() || nodes_.count(names) != 0) {
    return {};
  }
  for (std::size_t count = 1; count < names.size(); ++count) {
    const auto parent = nodes_.find(Path(names.begin(), names.begin() + static_cast<long>(count)));
    if (parent != nodes_.end() && parent->second) {
      return {};
    }
  }
  MakeDirectories(names, is_directory ? names.size() : names.size() - 1);
  return names;
}

void MadeUpTree::MakeDirectories(const Path& path, std::size_t count) {
  for (std::size_t depth = 1; depth <= count; ++depth) {
    const Path names(path.begin(), path.begin() + static_cast<long>(depth));
    if (nodes_.emplace(names, std::nullopt).second) {
      Require(mkdir(Joined(root_, path, depth).c_str(), 0700) == 0, "a directory can be made");
    }
  }
}

// As the kernel walks a path (path_resolution(7)).
MadeUpTree::Reading MadeUpTree::Read(const std::string& path) const {
  Path current;
  if (path.find('\0') != std::string::npos) {
    was_left_ = true;
    return {};
  }
  for (const std::string& name : Split(path.substr(root_.size()), '/')) {
    const auto here = nodes_.find(current);
    const bool is_directory = current.empty() || (here != nodes_.end() && !here->second);
    if (!is_directory) {
      return {};
    }
    if (name.size() > kLongestName) {
      return {std::nullopt, false, true};
    }
    if (name == ".." && current.empty()) {
      was_left_ = true;
      return {};
    }
    if (name == "..") {
      current.pop_back();
    } else if (!name.empty() && name != ".") {
      current.push_back(name);
    }
  }
  const auto node = nodes_.find(current);
  if (node == nodes_.end() && !current.empty()) {
    return {};
  }
  const bool is_file = !current.empty() && node->second;
  return {is_file ? node->second : std::nullopt, true, !is_file};
}

}  // namespace kestrel::fuzz

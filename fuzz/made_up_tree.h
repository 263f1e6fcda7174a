#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kestrel::fuzz {

// The files of a made-up machine: in memory for the references, and in a temporary directory for
// what is tested.
//
// The description is text. A line that begins with "=" names a file by its path on the machine, and
// the lines up to the next such line are the file's text; "=/a/b/" makes a directory where a file
// may be expected, which can be opened but not read.
class MadeUpTree {
 public:
  explicit MadeUpTree(const std::string& description);
  MadeUpTree(const MadeUpTree&) = delete;
  MadeUpTree& operator=(const MadeUpTree&) = delete;
  ~MadeUpTree();

  // Makes a file, or a directory if the path ends with "/". Returns false if a file system could
  // not have it, or if it exists.
  bool Add(const std::string& path, const std::string& text);

  // Makes a symbolic link, which Read() takes for a file.
  bool AddLink(const std::string& path, const std::string& target);

  // The temporary directory; every path below begins with it.
  [[nodiscard]] const std::string& root() const { return root_; }

  // What reading a file gives that need not exist.
  struct Reading {
    std::optional<std::string> text;
    bool exists = false;
    bool failed = false;  // it exists, or its name is longer than a file system allows
  };
  [[nodiscard]] Reading Read(const std::string& path) const;

  // Whether a path left the tree through "..", so that the machine that runs the test answers, or
  // has a NUL, which the kernel never writes. Then there is nothing to compare.
  [[nodiscard]] bool was_left() const { return was_left_; }

 private:
  using Path = std::vector<std::string>;
  Path MakePlace(const std::string& path, bool is_directory);
  void MakeDirectories(const Path& path, std::size_t count);

  std::string root_;
  std::map<Path, std::optional<std::string>> nodes_;  // no text: a directory
  mutable bool was_left_ = false;
};

}  // namespace kestrel::fuzz

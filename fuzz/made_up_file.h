#pragma once

#include <string>

namespace kestrel::fuzz {

// A file in memory that is opened by a path.
class MadeUpFile {
 public:
  static constexpr const char* kDirectory = "/proc/self/fd";

  MadeUpFile();
  MadeUpFile(const MadeUpFile&) = delete;
  MadeUpFile& operator=(const MadeUpFile&) = delete;
  ~MadeUpFile();

  // Replaces its text.
  void Write(const std::string& text) const;

  // Its name in that directory, beginning with "/".
  [[nodiscard]] std::string name() const { return "/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

}  // namespace kestrel::fuzz

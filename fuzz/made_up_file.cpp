#include "fuzz/made_up_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/property.h"

namespace kestrel::fuzz {

MadeUpFile::MadeUpFile() : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
  Require(descriptor_ >= 0, "a file in memory can be made");
}

MadeUpFile::~MadeUpFile() { close(descriptor_); }

void MadeUpFile::Write(const std::string& text) const {
  const bool written =
      ftruncate(descriptor_, 0) == 0 &&
      pwrite(descriptor_, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
  Require(written, "a file in memory can be written");
}

}  // namespace kestrel::fuzz

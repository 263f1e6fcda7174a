#include "hip_binding/linux/cut_off_library.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <optional>

#include "hip_binding/linux/elf_file.h"

namespace kestrel::hip_binding {

namespace {

// `nullopt` if the file cannot be read.
std::optional<ElfFile> JudgeFile(const char* path) noexcept {
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    return std::nullopt;
  }
  std::array<unsigned char, 1024> beginning;  // holds 17 program headers; libraries have about 10
  struct stat status {};
  const ssize_t size = pread(file, beginning.data(), beginning.size(), 0);
  const bool known = size >= 0 && fstat(file, &status) == 0;
  close(file);
  if (!known) {
    return std::nullopt;
  }
  return JudgeElfFile(beginning.data(), static_cast<std::size_t>(size),
                      static_cast<std::uint64_t>(status.st_size));
}

// The folders that the loader searches. LD_LIBRARY_PATH can name any number.
union SearchPath {
  Dl_serinfo info;
  std::array<char, 4096> storage;

  // Not info.dls_serpath, which is declared as an array without elements.
  [[nodiscard]] const Dl_serpath* folders() const noexcept {
    return reinterpret_cast<const Dl_serpath*>(storage.data() + offsetof(Dl_serinfo, dls_serpath));
  }
};

// False if there are more folders than fit.
bool GetSearchPath(SearchPath& path) noexcept {
  Dl_serinfo size{};
  void* const program = dlopen(nullptr, RTLD_LAZY);
  const bool known = dlinfo(program, RTLD_DI_SERINFOSIZE, &size) == 0 &&
                     size.dls_size <= sizeof(path) &&
                     dlinfo(program, RTLD_DI_SERINFOSIZE, &path.info) == 0 &&
                     dlinfo(program, RTLD_DI_SERINFO, &path.info) == 0;
  dlclose(program);
  return known;
}

}  // namespace

bool IsCutOff(const Candidate& candidate) noexcept {
  if (candidate.origin == Origin::kPath) {
    return JudgeFile(candidate.name) == ElfFile::kCutOff;
  }
  SearchPath path;
  if (!GetSearchPath(path)) {
    return false;
  }
  for (unsigned i = 0; i < path.info.dls_cnt; ++i) {
    PathText file;
    std::snprintf(file.data(), file.size(), "%s/%s", path.folders()[i].dls_name, candidate.name);
    const auto kind = JudgeFile(file.data());
    if (kind && *kind != ElfFile::kOther) {
      return *kind == ElfFile::kCutOff;
    }
  }
  return false;
}

}  // namespace kestrel::hip_binding

// The check for a library that was cut off, against a reference that reads the bytes one by one.
// The input is the file.

#include <algorithm>
#include <memory>

#include "fuzz/made_up_file.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "hip_binding/linux/cut_off_library.h"
#include "hip_binding/linux/elf_file.h"

namespace kestrel::fuzz {

namespace {

using hip_binding::ElfFile;

constexpr std::size_t kBeginning = 1024;  // what IsCutOff reads

// A number of `count` bytes, the lowest first. The places are those of elf(5).
std::uint64_t NumberAt(const std::string& file, std::size_t position, std::size_t count) {
  std::uint64_t number = 0;
  for (std::size_t i = count; i > 0; --i) {
    number = number * 256 + static_cast<unsigned char>(file.at(position + i - 1));
  }
  return number;
}

ElfFile KindOf(const std::string& beginning, std::uint64_t file_size) {
  const bool is_elf = beginning.size() >= 64 &&
                      beginning.compare(0, 5,
                                        "\x7f"
                                        "ELF\x02") == 0 &&
                      NumberAt(beginning, 18, 2) == 62;
  if (!is_elf) {
    return ElfFile::kOther;
  }
  const std::uint64_t headers = NumberAt(beginning, 32, 8);
  const std::uint64_t count = NumberAt(beginning, 56, 2);
  for (std::uint64_t i = 0; i < count; ++i) {
    __extension__ using Wide = unsigned __int128;
    const Wide header = Wide{headers} + Wide{i} * 56;
    if (header + 56 > beginning.size()) {
      break;
    }
    const auto at = static_cast<std::size_t>(header);
    const Wide end = Wide{NumberAt(beginning, at + 8, 8)} + NumberAt(beginning, at + 32, 8);
    if (NumberAt(beginning, at, 4) == 1 && end > file_size) {
      return ElfFile::kCutOff;
    }
  }
  return ElfFile::kWhole;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string file = TextOf(data, size);
  // A copy of exactly this size, so that the address sanitizer sees a byte too many.
  const auto copy = std::make_unique<unsigned char[]>(size);
  std::copy_n(data, size, copy.get());
  for (const std::uint64_t file_size :
       {std::uint64_t{size}, std::uint64_t{size} * 64, UINT64_MAX}) {
    Require(hip_binding::JudgeElfFile(copy.get(), size, file_size) == KindOf(file, file_size),
            "a file is judged as by the reference");
  }

  static MadeUpFile made_up;
  static const std::string path = MadeUpFile::kDirectory + made_up.name();
  made_up.Write(file);
  Require(hip_binding::IsCutOff({hip_binding::Origin::kPath, path.c_str()}) ==
              (KindOf(file.substr(0, kBeginning), size) == ElfFile::kCutOff),
          "a library is cut off where the reference says so");
  return 0;
}

}  // namespace kestrel::fuzz

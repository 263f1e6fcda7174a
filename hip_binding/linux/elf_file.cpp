#include "hip_binding/linux/elf_file.h"

#include <elf.h>

#include <cstring>

namespace kestrel::hip_binding {

ElfFile JudgeElfFile(const unsigned char* beginning, std::size_t beginning_size,
                     std::uint64_t file_size) noexcept {
  Elf64_Ehdr header;
  if (beginning_size < sizeof(header)) {
    return ElfFile::kOther;
  }
  std::memcpy(&header, beginning, sizeof(header));
  if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64 ||
      header.e_machine != EM_X86_64) {
    return ElfFile::kOther;
  }
  std::uint64_t offset = header.e_phoff;
  for (int i = 0; i < header.e_phnum; ++i, offset += sizeof(Elf64_Phdr)) {
    if (offset > beginning_size || beginning_size - offset < sizeof(Elf64_Phdr)) {
      break;
    }
    Elf64_Phdr segment;
    std::memcpy(&segment, beginning + offset, sizeof(segment));
    if (segment.p_type == PT_LOAD &&
        (segment.p_offset > file_size || file_size - segment.p_offset < segment.p_filesz)) {
      return ElfFile::kCutOff;
    }
  }
  return ElfFile::kWhole;
}

}  // namespace kestrel::hip_binding

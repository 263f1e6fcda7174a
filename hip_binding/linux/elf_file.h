#pragma once

#include <cstddef>
#include <cstdint>

namespace kestrel::hip_binding {

enum class ElfFile : std::uint8_t {
  kOther,   // not for a 64-bit x86 process, or no ELF file: the loader refuses or skips it
  kCutOff,  // shorter than its segments: loading it ends the process with SIGBUS
  kWhole,
};

// Judges a file by its first bytes and its size. Program headers that are not within these bytes
// count as whole; the linkers put them right after the file's header.
[[nodiscard]] ElfFile JudgeElfFile(const unsigned char* beginning, std::size_t beginning_size,
                                   std::uint64_t file_size) noexcept;

}  // namespace kestrel::hip_binding

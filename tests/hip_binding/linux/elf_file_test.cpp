#include "hip_binding/linux/elf_file.h"

#include <elf.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>

namespace kestrel::tests {
namespace {

using hip_binding::ElfFile;
using hip_binding::JudgeElfFile;

constexpr std::size_t kHeaders = sizeof(Elf64_Ehdr) + 2 * sizeof(Elf64_Phdr);

// A library of two segments, of which the second ends at byte 5000.
class ElfFileTest : public testing::Test {
 protected:
  ElfFileTest() {
    std::memcpy(header_.e_ident, ELFMAG, SELFMAG);
    header_.e_ident[EI_CLASS] = ELFCLASS64;
    header_.e_machine = EM_X86_64;
    header_.e_phoff = sizeof(Elf64_Ehdr);
    header_.e_phnum = 2;
    segments_[0].p_type = PT_LOAD;
    segments_[0].p_filesz = 1000;
    segments_[1].p_type = PT_LOAD;
    segments_[1].p_offset = 4096;
    segments_[1].p_filesz = 904;
  }

  [[nodiscard]] ElfFile Judge(std::uint64_t file_size,
                              std::size_t beginning_size = kHeaders) const {
    std::array<unsigned char, kHeaders> beginning{};
    std::memcpy(beginning.data(), &header_, sizeof(header_));
    std::memcpy(beginning.data() + sizeof(header_), segments_.data(), sizeof(segments_));
    return JudgeElfFile(beginning.data(), beginning_size, file_size);
  }

  Elf64_Ehdr header_{};
  std::array<Elf64_Phdr, 2> segments_{};
};

TEST_F(ElfFileTest, FileThatHoldsItsSegmentsIsWhole) { EXPECT_EQ(Judge(5000), ElfFile::kWhole); }

TEST_F(ElfFileTest, FileThatEndsWithinASegmentIsCutOff) {
  EXPECT_EQ(Judge(4999), ElfFile::kCutOff);
}

TEST_F(ElfFileTest, FileThatEndsBeforeASegmentIsCutOff) {
  EXPECT_EQ(Judge(2000), ElfFile::kCutOff);
}

TEST_F(ElfFileTest, SizeOfASegmentThatIsNotLoadedDoesNotCount) {
  segments_[1].p_type = PT_NOTE;
  EXPECT_EQ(Judge(2000), ElfFile::kWhole);
}

TEST_F(ElfFileTest, SegmentBeyondAllNumbersIsCutOff) {
  segments_[1].p_offset = ~std::uint64_t{0};
  EXPECT_EQ(Judge(5000), ElfFile::kCutOff);
}

TEST_F(ElfFileTest, ProgramHeadersThatWereNotReadCountAsWhole) {
  EXPECT_EQ(Judge(4999, kHeaders - 1), ElfFile::kWhole);
  header_.e_phoff = ~std::uint64_t{0};
  EXPECT_EQ(Judge(4999), ElfFile::kWhole);
}

TEST_F(ElfFileTest, OnlyAsManyProgramHeadersCountAsThereAre) {
  header_.e_phnum = 1;
  EXPECT_EQ(Judge(4999), ElfFile::kWhole);
  header_.e_phnum = 0;
  EXPECT_EQ(Judge(999), ElfFile::kWhole);
  EXPECT_EQ(Judge(64, 64), ElfFile::kWhole);
}

TEST_F(ElfFileTest, ProgramHeaderBeyondWhatWasReadDoesNotCount) {
  header_.e_phoff = sizeof(Elf64_Ehdr) + sizeof(Elf64_Phdr);
  header_.e_phnum = 1;
  EXPECT_EQ(Judge(4999), ElfFile::kCutOff);
  EXPECT_EQ(Judge(4999, sizeof(Elf64_Ehdr)), ElfFile::kWhole);
}

TEST_F(ElfFileTest, EmptySegmentAtTheEndOfTheFileIsWhole) {
  segments_[1].p_offset = 5000;
  segments_[1].p_filesz = 0;
  EXPECT_EQ(Judge(5000), ElfFile::kWhole);
  EXPECT_EQ(Judge(4999), ElfFile::kCutOff);
}

TEST_F(ElfFileTest, LibraryOfAnotherProcessorIsOther) {
  header_.e_machine = EM_AARCH64;
  EXPECT_EQ(Judge(5000), ElfFile::kOther);
}

TEST_F(ElfFileTest, LibraryOf32BitsIsOther) {
  header_.e_ident[EI_CLASS] = ELFCLASS32;
  EXPECT_EQ(Judge(5000), ElfFile::kOther);
}

TEST_F(ElfFileTest, FileOfAnotherKindIsOther) {
  header_.e_ident[0] = 'M';
  EXPECT_EQ(Judge(5000), ElfFile::kOther);
}

TEST_F(ElfFileTest, FileShorterThanItsHeaderIsOther) {
  EXPECT_EQ(Judge(0, 0), ElfFile::kOther);
  EXPECT_EQ(Judge(63, 63), ElfFile::kOther);
}

}  // namespace
}  // namespace kestrel::tests

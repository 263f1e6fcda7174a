#include "hip_binding/linux/cut_off_library.h"

#include <elf.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace kestrel::tests {
namespace {

namespace fs = std::filesystem;
using hip_binding::IsCutOff;
using hip_binding::Origin;

// The loader searches these two, since they are in the run path of this program.
const fs::path kFirstFolder = KESTREL_FIRST_FOLDER;
const fs::path kSecondFolder = KESTREL_SECOND_FOLDER;

constexpr std::size_t kWholeSize = 5000;

// The first bytes of a library of `kWholeSize` bytes.
std::string Library(std::size_t size, Elf64_Half machine = EM_X86_64) {
  Elf64_Ehdr header{};
  std::memcpy(header.e_ident, ELFMAG, SELFMAG);
  header.e_ident[EI_CLASS] = ELFCLASS64;
  header.e_machine = machine;
  header.e_phoff = sizeof(header);
  header.e_phnum = 1;
  Elf64_Phdr segment{};
  segment.p_type = PT_LOAD;
  segment.p_filesz = kWholeSize;
  std::string bytes(std::max(size, sizeof(header) + sizeof(segment)), '\0');
  std::memcpy(bytes.data(), &header, sizeof(header));
  std::memcpy(bytes.data() + sizeof(header), &segment, sizeof(segment));
  return bytes.substr(0, size);
}

class CutOffLibraryTest : public testing::Test {
 protected:
  CutOffLibraryTest() {
    for (const fs::path& folder : {kFirstFolder, kSecondFolder}) {
      fs::remove_all(folder / name_);
    }
  }

  void Write(const fs::path& folder, const std::string& bytes) const {
    std::ofstream(folder / name_, std::ios::binary) << bytes;
  }

  [[nodiscard]] bool FileIsCutOff() const {
    return IsCutOff({Origin::kPath, (kFirstFolder / name_).c_str()});
  }
  [[nodiscard]] bool SearchedFileIsCutOff() const {
    return IsCutOff({Origin::kSearch, name_.c_str()});
  }

  // Of its own for each test: they run at the same time.
  std::string name_ = testing::UnitTest::GetInstance()->current_test_info()->name();
};

TEST_F(CutOffLibraryTest, FileThatEndsWithinItsSegmentIsCutOff) {
  Write(kFirstFolder, Library(kWholeSize - 1));
  EXPECT_TRUE(FileIsCutOff());
}

TEST_F(CutOffLibraryTest, WholeFileIsNot) {
  Write(kFirstFolder, Library(kWholeSize));
  EXPECT_FALSE(FileIsCutOff());
}

// Whatever file was judged before.
TEST_F(CutOffLibraryTest, FileThatCannotBeReadIsNot) {
  Write(kFirstFolder, Library(kWholeSize - 1));
  EXPECT_TRUE(FileIsCutOff());
  fs::remove(kFirstFolder / name_);
  EXPECT_FALSE(FileIsCutOff());
  fs::create_directory(kFirstFolder / name_);
  EXPECT_FALSE(FileIsCutOff());
}

TEST_F(CutOffLibraryTest, FileIsJudgedWhereStandardInputIsClosed) {
  Write(kFirstFolder, Library(kWholeSize - 1));
  const int standard_input = dup(STDIN_FILENO);
  close(STDIN_FILENO);
  EXPECT_TRUE(FileIsCutOff());
  dup2(standard_input, STDIN_FILENO);
  close(standard_input);
}

TEST_F(CutOffLibraryTest, FileIsClosedAgain) {
  const int next = dup(STDIN_FILENO);
  close(next);
  Write(kFirstFolder, Library(kWholeSize - 1));
  EXPECT_TRUE(FileIsCutOff());
  const int after = dup(STDIN_FILENO);
  close(after);
  EXPECT_EQ(after, next);
}

TEST_F(CutOffLibraryTest, FileThatIsNoLibraryIsNot) {
  Write(kFirstFolder, "");
  EXPECT_FALSE(FileIsCutOff());
  Write(kFirstFolder, std::string(kWholeSize, 'x'));
  EXPECT_FALSE(FileIsCutOff());
}

TEST_F(CutOffLibraryTest, FirstFileThatTheSearchFindsDecides) {
  Write(kFirstFolder, Library(kWholeSize - 1));
  Write(kSecondFolder, Library(kWholeSize));
  EXPECT_TRUE(SearchedFileIsCutOff());
  Write(kFirstFolder, Library(kWholeSize));
  Write(kSecondFolder, Library(kWholeSize - 1));
  EXPECT_FALSE(SearchedFileIsCutOff());
}

TEST_F(CutOffLibraryTest, SearchGoesOnWhereAFolderLacksTheFile) {
  Write(kSecondFolder, Library(kWholeSize - 1));
  EXPECT_TRUE(SearchedFileIsCutOff());
}

// As the loader's does.
TEST_F(CutOffLibraryTest, SearchGoesOnAfterALibraryOfAnotherProcessor) {
  Write(kFirstFolder, Library(kWholeSize - 1, EM_AARCH64));
  Write(kSecondFolder, Library(kWholeSize - 1));
  EXPECT_TRUE(SearchedFileIsCutOff());
  Write(kSecondFolder, Library(kWholeSize));
  EXPECT_FALSE(SearchedFileIsCutOff());
}

TEST_F(CutOffLibraryTest, FileThatIsInNoFolderIsNotCutOff) { EXPECT_FALSE(SearchedFileIsCutOff()); }

}  // namespace
}  // namespace kestrel::tests

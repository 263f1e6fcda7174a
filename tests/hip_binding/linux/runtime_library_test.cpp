#include "hip_binding/runtime_library.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace kestrel::tests {
namespace {

namespace fs = std::filesystem;
using hip_binding::Candidate;
using hip_binding::CloseLibrary;
using hip_binding::FindFunction;
using hip_binding::OpenLibrary;
using hip_binding::Origin;

constexpr const char* kRuntime = KESTREL_RUNTIME;

class RuntimeLibraryTest : public testing::Test {
 protected:
  hip_binding::ReasonText reason_{};
};

TEST_F(RuntimeLibraryTest, CandidatesAreThoseOfTheProcessThenOfTheLoaderThenOfRocm) {
  std::vector<std::string> candidates;
  for (const Candidate& candidate : hip_binding::Candidates()) {
    candidates.push_back(std::to_string(static_cast<int>(candidate.origin)) + " " + candidate.name);
  }
  EXPECT_EQ(candidates, (std::vector<std::string>{
                            "0 libamdhip64.so.7", "0 libamdhip64.so.6", "0 libamdhip64.so.5",
                            "1 libamdhip64.so.7", "1 libamdhip64.so.6", "1 libamdhip64.so.5",
                            "2 /opt/rocm/lib/libamdhip64.so.7", "2 /opt/rocm/lib/libamdhip64.so.6",
                            "2 /opt/rocm/lib/libamdhip64.so.5"}));
  EXPECT_EQ(static_cast<int>(Origin::kLoaded), 0);
  EXPECT_EQ(static_cast<int>(Origin::kSearch), 1);
  EXPECT_EQ(static_cast<int>(Origin::kPath), 2);
}

TEST_F(RuntimeLibraryTest, OpenLibraryOffersItsFunctionsAndNamesItsFile) {
  void* const library = OpenLibrary({Origin::kPath, kRuntime}, reason_);
  ASSERT_NE(library, nullptr) << reason_.data();
  EXPECT_NE(FindFunction(library, "hipGetDeviceCount"), nullptr);
  hip_binding::PathText path{};
  hip_binding::GetLibraryPath(library, path);
  EXPECT_STREQ(path.data(), kRuntime);
  CloseLibrary(library);
}

TEST_F(RuntimeLibraryTest, FunctionThatIsMissingIsNullAndLeavesTheHostNoError) {
  void* const library = OpenLibrary({Origin::kPath, kRuntime}, reason_);
  ASSERT_NE(library, nullptr) << reason_.data();
  EXPECT_EQ(FindFunction(library, "hipNoSuchFunction"), nullptr);
  EXPECT_EQ(dlerror(), nullptr);
  CloseLibrary(library);
}

TEST_F(RuntimeLibraryTest, NamesOfTheRuntimeDoNotReachTheHost) {
  void* const library = OpenLibrary({Origin::kPath, kRuntime}, reason_);
  ASSERT_NE(library, nullptr) << reason_.data();
  EXPECT_EQ(dlsym(RTLD_DEFAULT, "hipGetDeviceCount"), nullptr);
  dlerror();
  CloseLibrary(library);
}

TEST_F(RuntimeLibraryTest, LibraryOfTheProcessIsFoundOnlyAsLongAsItIsOpen) {
  const Candidate loaded = {Origin::kLoaded, kRuntime};
  EXPECT_EQ(OpenLibrary(loaded, reason_), nullptr);
  void* const library = OpenLibrary({Origin::kPath, kRuntime}, reason_);
  ASSERT_NE(library, nullptr) << reason_.data();
  EXPECT_EQ(OpenLibrary(loaded, reason_), library);
  CloseLibrary(library);
  CloseLibrary(library);
  EXPECT_EQ(OpenLibrary(loaded, reason_), nullptr);
}

// The file may be half written while an upgrade of the runtime goes on.
TEST_F(RuntimeLibraryTest, LibraryOfTheProcessIsFoundAfterItsFileWasReplacedByOneThatIsCutOff) {
  const std::string name = "libkestrel-replaced.so";
  const fs::path file = fs::path(KESTREL_SEARCHED_FOLDER) / name;
  fs::remove(file);
  fs::copy_file(kRuntime, file);
  void* const library = OpenLibrary({Origin::kSearch, name.c_str()}, reason_);
  ASSERT_NE(library, nullptr) << reason_.data();
  fs::remove(file);  // the library of the process keeps the content
  fs::copy_file(kRuntime, file);
  fs::resize_file(file, 8000);
  EXPECT_EQ(OpenLibrary({Origin::kLoaded, name.c_str()}, reason_), library) << reason_.data();
  CloseLibrary(library);
  CloseLibrary(library);
  EXPECT_EQ(OpenLibrary({Origin::kSearch, name.c_str()}, reason_), nullptr);
  EXPECT_EQ(reason_.data(), name + ": the file is cut off");
}

TEST_F(RuntimeLibraryTest, LibraryThatDoesNotExistFailsWithTheLoadersReason) {
  EXPECT_EQ(OpenLibrary({Origin::kSearch, "libkestrel-none.so"}, reason_), nullptr);
  EXPECT_EQ(std::string(reason_.data()).rfind("libkestrel-none.so", 0), 0U) << reason_.data();
  EXPECT_EQ(dlerror(), nullptr);
}

TEST_F(RuntimeLibraryTest, LibraryWithAFunctionThatNoneHasFailsAtOnce) {
  EXPECT_EQ(OpenLibrary({Origin::kPath, KESTREL_RUNTIME_THAT_FAILS_TO_START}, reason_), nullptr);
  EXPECT_NE(std::string(reason_.data()).find("kestrel_function_of_no_library"), std::string::npos)
      << reason_.data();
}

TEST_F(RuntimeLibraryTest, FileThatIsCutOffIsNamed) {
  const std::string file = std::string(kRuntime) + ".cut-off";
  fs::copy_file(kRuntime, file, fs::copy_options::overwrite_existing);
  fs::resize_file(file, 8000);
  EXPECT_EQ(OpenLibrary({Origin::kPath, file.c_str()}, reason_), nullptr);
  EXPECT_EQ(reason_.data(), (file + ": the file is cut off").substr(0, reason_.size() - 1));
}

}  // namespace
}  // namespace kestrel::tests

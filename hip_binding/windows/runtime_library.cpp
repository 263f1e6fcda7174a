#include "hip_binding/runtime_library.h"

#include <windows.h>

#include <iterator>

#include "hip_binding/windows/text.h"

namespace kestrel::hip_binding {

namespace {

// The runtime of HIP 5 has no number in its name. A runtime of the process comes before all others,
// since the survey must use the current device of its host.
constexpr Candidate kCandidates[] = {
    {Origin::kLoaded, "amdhip64_7.dll"}, {Origin::kLoaded, "amdhip64_6.dll"},
    {Origin::kLoaded, "amdhip64.dll"},   {Origin::kSearch, "amdhip64_7.dll"},
    {Origin::kSearch, "amdhip64_6.dll"}, {Origin::kSearch, "amdhip64.dll"},
};
static_assert(std::size(kCandidates) <= kMaxCandidates);

// Keeps Windows from showing a dialog for a damaged file while a library is loaded.
class QuietErrorMode {
 public:
  QuietErrorMode() noexcept {
    SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &before_);
  }
  QuietErrorMode(const QuietErrorMode&) = delete;
  QuietErrorMode& operator=(const QuietErrorMode&) = delete;
  ~QuietErrorMode() { SetThreadErrorMode(before_, nullptr); }

 private:
  DWORD before_ = 0;
};

HMODULE Open(const Candidate& candidate) noexcept {
  if (candidate.origin == Origin::kLoaded) {
    // Unlike GetModuleHandle, this keeps the library loaded if the host frees it.
    HMODULE library = nullptr;
    return GetModuleHandleExA(0, candidate.name, &library) != 0 ? library : nullptr;
  }
  // The program's folder, those that it added with AddDllDirectory, and the system folder. The
  // current folder and PATH are not searched: other users may be able to write there.
  const QuietErrorMode quiet;
  return LoadLibraryExA(candidate.name, nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

void DescribeError(DWORD error, ReasonText& reason) noexcept {
  std::array<wchar_t, 160> text;
  const DWORD flags =
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
  const DWORD size = FormatMessageW(flags, nullptr, error, 0, text.data(),
                                    static_cast<DWORD>(text.size()), nullptr);
  SetReason(error, size > 0 ? text.data() : nullptr, reason);
}

}  // namespace

CandidateList Candidates() noexcept { return {std::begin(kCandidates), std::size(kCandidates)}; }

void* OpenLibrary(const Candidate& candidate, ReasonText& reason) noexcept {
  const HMODULE library = Open(candidate);
  if (library == nullptr) {
    DescribeError(GetLastError(), reason);
  }
  return library;
}

void CloseLibrary(void* library) noexcept { FreeLibrary(static_cast<HMODULE>(library)); }

Function FindFunction(void* library, const char* name) noexcept {
  return reinterpret_cast<Function>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void GetLibraryPath(void* library, PathText& path) noexcept {
  std::array<wchar_t, 512> wide;
  const auto size = static_cast<DWORD>(wide.size());
  const DWORD copied = GetModuleFileNameW(static_cast<HMODULE>(library), wide.data(), size);
  SetUtf8(copied > 0 && copied < size ? wide.data() : L"", path.data(), path.size());
}

}  // namespace kestrel::hip_binding

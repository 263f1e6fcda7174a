#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// The seam to the system's loader: which libraries may be the HIP runtime, and how one is opened.
// Each function is defined once in hip_binding/linux, once in hip_binding/windows and once in
// tests/fakes; the linker binds one of them. Nothing here throws or allocates memory of its
// own; the loader allocates for what it loads and, on Linux, for the text of an error.

namespace kestrel::hip_binding {

enum class Origin : std::uint8_t {
  kLoaded,  // `name` is a file name; only a library that the process has loaded already
  kSearch,  // `name` is a file name; the loader searches for it
  kPath,    // `name` is an absolute path
};

struct Candidate {
  Origin origin;
  const char* name;
};

// At least as many as a system has candidates.
inline constexpr std::size_t kMaxCandidates = 9;

struct CandidateList {
  const Candidate* first;
  std::size_t size;

  [[nodiscard]] const Candidate* begin() const noexcept { return first; }
  [[nodiscard]] const Candidate* end() const noexcept { return first + size; }
};

// UTF-8 that ends with a NUL. What does not fit is cut off; on Windows a path is then empty, and a
// reason the number of the error.
using ReasonText = std::array<char, 256>;
using PathText = std::array<char, 1024>;

// Everything that may be the runtime, in the order in which it is tried.
[[nodiscard]] CandidateList Candidates() noexcept;

// Returns a handle that keeps the library loaded until CloseLibrary; null if it cannot be opened,
// with the loader's explanation in `reason` (none for Origin::kLoaded). Runs the initialisers of a
// library that it loads.
[[nodiscard]] void* OpenLibrary(const Candidate& candidate, ReasonText& reason) noexcept;

void CloseLibrary(void* library) noexcept;

// Cast it to the type of the function that it is.
using Function = void (*)();

// Null if the library exports no such function.
[[nodiscard]] Function FindFunction(void* library, const char* name) noexcept;

// The file that the library was loaded from; empty if the loader does not know it.
void GetLibraryPath(void* library, PathText& path) noexcept;

}  // namespace kestrel::hip_binding

#include "hip_binding/runtime_library.h"

#include <dlfcn.h>
#include <link.h>

#include <cstdio>
#include <iterator>

#include "hip_binding/linux/cut_off_library.h"

namespace kestrel::hip_binding {

namespace {

// The number is the major version of HIP. A runtime of the process comes before all others, since
// the survey must use the current device of its host. ROCm's own packages install into /opt/rocm,
// which the loader does not search unless the machine's administrator adds it.
constexpr Candidate kCandidates[] = {
    {Origin::kLoaded, "libamdhip64.so.7"},
    {Origin::kLoaded, "libamdhip64.so.6"},
    {Origin::kLoaded, "libamdhip64.so.5"},
    {Origin::kSearch, "libamdhip64.so.7"},
    {Origin::kSearch, "libamdhip64.so.6"},
    {Origin::kSearch, "libamdhip64.so.5"},
    {Origin::kPath, "/opt/rocm/lib/libamdhip64.so.7"},
    {Origin::kPath, "/opt/rocm/lib/libamdhip64.so.6"},
    {Origin::kPath, "/opt/rocm/lib/libamdhip64.so.5"},
};
static_assert(std::size(kCandidates) <= kMaxCandidates);

}  // namespace

CandidateList Candidates() noexcept { return {std::begin(kCandidates), std::size(kCandidates)}; }

void* OpenLibrary(const Candidate& candidate, ReasonText& reason) noexcept {
  if (candidate.origin != Origin::kLoaded && IsCutOff(candidate)) {
    std::snprintf(reason.data(), reason.size(), "%s: the file is cut off", candidate.name);
    return nullptr;
  }
  // RTLD_NOW: a runtime whose own dependencies lack a function fails here, not in the middle of a
  // call. RTLD_LOCAL: the names of the runtime do not reach the host.
  const int loading = candidate.origin == Origin::kLoaded ? RTLD_NOLOAD : 0;
  void* const library = dlopen(candidate.name, RTLD_NOW | RTLD_LOCAL | loading);
  if (library == nullptr) {
    const char* const text = dlerror();
    std::snprintf(reason.data(), reason.size(), "%s", text != nullptr ? text : "");
  }
  return library;
}

void CloseLibrary(void* library) noexcept { dlclose(library); }

Function FindFunction(void* library, const char* name) noexcept {
  const auto function = reinterpret_cast<Function>(dlsym(library, name));
  if (function == nullptr) {
    dlerror();  // The host's own calls of dlerror() must not return this.
  }
  return function;
}

void GetLibraryPath(void* library, PathText& path) noexcept {
  link_map* map = nullptr;
  const bool known = dlinfo(library, RTLD_DI_LINKMAP, static_cast<void*>(&map)) == 0;
  std::snprintf(path.data(), path.size(), "%s", known ? map->l_name : "");
}

}  // namespace kestrel::hip_binding

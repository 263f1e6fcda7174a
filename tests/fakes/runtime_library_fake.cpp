#include "tests/fakes/runtime_library_fake.h"

#include <cstdio>
#include <utility>

namespace kestrel::tests {

LoaderFake& Loader() {
  static LoaderFake loader;
  return loader;
}

void ResetLoader() {
  LoaderFake& loader = Loader();
  loader.candidates.clear();
  loader.loaded.clear();
  loader.loadable.clear();
  loader.meanwhile = nullptr;
  loader.calls.clear();
  loader.open_handles.clear();
}

}  // namespace kestrel::tests

namespace kestrel::hip_binding {

using tests::Loader;
using tests::RuntimeFake;

CandidateList Candidates() noexcept {
  return {Loader().candidates.data(), Loader().candidates.size()};
}

void* OpenLibrary(const Candidate& candidate, ReasonText& reason) noexcept {
  auto& loader = Loader();
  if (loader.meanwhile) {
    std::exchange(loader.meanwhile, nullptr)();
  }
  const std::lock_guard lock(loader.mutex);
  const bool wants_loaded = candidate.origin == Origin::kLoaded;
  loader.calls.push_back((wants_loaded ? "find " : "open ") + std::string(candidate.name));
  const auto& libraries = wants_loaded ? loader.loaded : loader.loadable;
  const auto found = libraries.find(candidate.name);
  if (found == libraries.end()) {
    std::snprintf(reason.data(), reason.size(), "%s: no such file", candidate.name);
    return nullptr;
  }
  ++loader.open_handles[found->second];
  return found->second;
}

void CloseLibrary(void* library) noexcept {
  auto& loader = Loader();
  const std::lock_guard lock(loader.mutex);
  loader.calls.emplace_back("close");
  --loader.open_handles[library];
}

Function FindFunction(void* library, const char* name) noexcept {
  const auto& functions = *static_cast<const RuntimeFake*>(library);
  const auto found = functions.find(name);
  return found != functions.end() ? found->second : nullptr;
}

void GetLibraryPath(void* library, PathText& path) noexcept {
  for (const auto& libraries : {Loader().loaded, Loader().loadable}) {
    for (const auto& [name, runtime] : libraries) {
      if (runtime == library) {
        std::snprintf(path.data(), path.size(), "/lib/%s", name.c_str());
      }
    }
  }
}

}  // namespace kestrel::hip_binding

#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "hip_binding/runtime_library.h"

namespace kestrel::tests {

// The functions that one library exports, by name.
using RuntimeFake = std::map<std::string, hip_binding::Function>;

// A loader of libraries that exist in the test alone. A candidate without a library fails to open.
struct LoaderFake {
  std::vector<hip_binding::Candidate> candidates;
  std::map<std::string, RuntimeFake*> loaded;    // by the names of candidates of Origin::kLoaded
  std::map<std::string, RuntimeFake*> loadable;  // by the names of all others

  // What happens once, while a library is being opened: in another thread, for example.
  std::function<void()> meanwhile;

  // Every opening and closing, in order, as written: "open /opt/x", "close".
  std::vector<std::string> calls;
  std::map<void*, int> open_handles;  // how often each library is open
  std::mutex mutex;                   // of the two above
};

// The fake behind hip_binding/runtime_library.h.
LoaderFake& Loader();

// Makes it one without candidates.
void ResetLoader();

// Removes the difference between function types.
template <typename Result, typename... Arguments>
hip_binding::Function FunctionOf(Result (*function)(Arguments...)) {
  return reinterpret_cast<hip_binding::Function>(function);
}

}  // namespace kestrel::tests

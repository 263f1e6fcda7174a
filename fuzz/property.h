#pragma once

#include <cstdio>
#include <cstdlib>

namespace kestrel::fuzz {

// Ends the run if a property does not hold. libFuzzer then reports the stack and keeps the input.
inline void Require(bool holds, const char* property) {
  if (!holds) {
    static_cast<void>(std::fprintf(stderr, "Property does not hold: %s\n", property));
    std::abort();
  }
}

}  // namespace kestrel::fuzz

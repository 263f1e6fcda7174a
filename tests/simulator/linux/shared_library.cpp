#include "tests/simulator/shared_library.h"

#include <dlfcn.h>

namespace kestrel::tests {

void* LoadLibraryFile(const char* file) { return dlopen(file, RTLD_NOW | RTLD_LOCAL); }

Function FindFunction(void* library, const char* name) {
  return reinterpret_cast<Function>(dlsym(library, name));
}

}  // namespace kestrel::tests

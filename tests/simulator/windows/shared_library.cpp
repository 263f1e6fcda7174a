#include "tests/simulator/shared_library.h"

#include <windows.h>

namespace kestrel::tests {

void* LoadLibraryFile(const char* file) { return LoadLibraryA(file); }

Function FindFunction(void* library, const char* name) {
  return reinterpret_cast<Function>(GetProcAddress(static_cast<HMODULE>(library), name));
}

}  // namespace kestrel::tests

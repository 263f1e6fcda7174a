// A library to preload (LD_PRELOAD) in which the allocations of a program fail from its main() on:
// ATTACK_NO_MEMORY is the number of the first, with a "+" if all later ones fail too; -1 lets all
// succeed. At the end it writes how many there were to the file that ATTACK_NO_MEMORY_COUNT names.

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/attack/allocations.h"

namespace kestrel::tests {
namespace {

using Main = int (*)(int, char**, char**);
using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);

Main the_main = nullptr;

// Nothing can be promised before main() begins: libraries allocate in the constructors of their
// globals, which nobody can guard.
int ArmedMain(int argc, char** argv, char** environment) {
  const char* const text = std::getenv("ATTACK_NO_MEMORY");
  if (text == nullptr) {
    std::abort();  // an attack that does not happen must not pass
  }
  ArmAllocations({std::atol(text), text[std::strlen(text) - 1] == '+'});
  return the_main(argc, argv, environment);
}

__attribute__((destructor)) void WriteCount() {
  const long count = DisarmAllocations();
  const char* const path = std::getenv("ATTACK_NO_MEMORY_COUNT");
  std::FILE* const file = path != nullptr ? std::fopen(path, "w") : nullptr;
  if (file != nullptr) {
    std::fprintf(file, "%ld\n", count);
    std::fclose(file);
  }
}

}  // namespace
}  // namespace kestrel::tests

// glibc's function that calls main().
extern "C" int __libc_start_main(kestrel::tests::Main main, int argc, char** argv, void (*init)(),
                                 void (*fini)(), void (*loader_fini)(), void* stack_end) {
  kestrel::tests::the_main = main;
  const auto start = reinterpret_cast<kestrel::tests::Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
  return start(kestrel::tests::ArmedMain, argc, argv, init, fini, loader_fini, stack_end);
}

#include "tests/attack/last_place.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>

#include "tests/attack/allocations.h"

namespace kestrel::tests {

namespace {

PlaceText* the_place = nullptr;

bool IsOfLanguage(const char* name) {
  for (const char* const prefix :
       {"libc.", "libstdc++.", "libgcc_s.", "ld-linux", "attack_probe"}) {
    if (std::strncmp(name, prefix, std::strlen(prefix)) == 0) {
      return true;
    }
  }
  return false;
}

void WritePlace() {
  DisarmAllocations();
  std::array<void*, 64> frames{};
  const int count = backtrace(frames.data(), static_cast<int>(frames.size()));
  for (int i = 0; i < count; ++i) {
    Dl_info info{};
    if (dladdr(frames[static_cast<std::size_t>(i)], &info) != 0 && info.dli_fname != nullptr) {
      const char* const slash = std::strrchr(info.dli_fname, '/');
      const char* const name = slash != nullptr ? slash + 1 : info.dli_fname;
      if (!IsOfLanguage(name)) {
        std::snprintf(the_place->data(), the_place->size(), "%s", name);
        return;
      }
    }
  }
}

void OnSignal(int signal) {
  WritePlace();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

}  // namespace

void RecordLastPlace(PlaceText& place) {
  the_place = &place;
  void* frame = nullptr;
  backtrace(&frame, 1);  // loads what it needs
  for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGALRM}) {
    std::signal(signal, OnSignal);
  }
}

}  // namespace kestrel::tests

// A library that ends the process of its host does it by this function.
extern "C" void exit(int status) {
  if (kestrel::tests::the_place != nullptr) {
    kestrel::tests::WritePlace();
  }
  std::fflush(nullptr);
  _exit(status);
}

// A HIP runtime with one device whose functions throw on demand, as the real one does when memory
// runs short.

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

// Throws what the environment variable asks for: KESTREL_THROW=bad_alloc or number.
void ThrowOnDemand() {
  const char* const wanted = std::getenv("KESTREL_THROW");
  if (wanted != nullptr && std::strcmp(wanted, "bad_alloc") == 0) {
    throw std::bad_alloc();
  }
  if (wanted != nullptr && std::strcmp(wanted, "number") == 0) {
    throw 42;
  }
}

constexpr std::size_t kPropertiesSize = 792;  // of HIP 5

}  // namespace

extern "C" {

int hipGetDeviceCount(int* count) {
  ThrowOnDemand();
  *count = 1;
  return 0;
}

int hipGetDeviceProperties(void* properties, int /*device*/) {
  ThrowOnDemand();
  std::memset(properties, 0, kPropertiesSize);
  return 0;
}

int hipSetDevice(int /*device*/) {
  ThrowOnDemand();
  return 0;
}

int hipMemGetInfo(std::size_t* free, std::size_t* total) {
  ThrowOnDemand();
  *free = 1;
  *total = 2;
  return 0;
}

const char* hipGetErrorString(int /*status*/) { return "runtime's own text"; }

}  // extern "C"

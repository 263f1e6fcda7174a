// A host whose std::cerr throws when a write fails, and every write does: the runtime's message
// about its machine file must not end the host.

#include <hip/hip_runtime_api.h>

#include <iostream>
#include <streambuf>

int main() {
  struct Refusing : std::streambuf {
  } refusing;
  std::streambuf* const before = std::cerr.rdbuf(&refusing);
  std::cerr.exceptions(std::ios::badbit | std::ios::failbit);
  int count = 7;
  const hipError_t status = hipGetDeviceCount(&count);
  std::cerr.exceptions(std::ios::goodbit);
  std::cerr.rdbuf(before);
  std::cout << "hipGetDeviceCount: " << status << ", " << count << std::endl;
}

// HIP functions of the host's own. A library that binds HIP itself must neither replace nor call
// them.

namespace {

int calls = 0;

int Answer() {
  ++calls;
  return 0;
}

}  // namespace

extern "C" {

int hipGetDeviceCount(int* count) {
  *count = 77;
  return Answer();
}
int hipGetDeviceProperties(void*, int) { return Answer(); }
int hipGetDevicePropertiesR0600(void*, int) { return Answer(); }
int hipSetDevice(int) { return Answer(); }
int hipMemGetInfo(decltype(sizeof(0))*, decltype(sizeof(0))*) { return Answer(); }
const char* hipGetErrorString(int) {
  ++calls;
  return "of the host";
}
}

int CallsOfOwnHip() { return calls; }

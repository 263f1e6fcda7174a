#include "tests/fakes/hip_fake.h"

namespace kestrel::tests {

HipFake& Hip() {
  static HipFake fake;
  return fake;
}

namespace {

hipError_t Call(const std::string& operation) {
  Hip().calls.push_back(operation);
  const auto action = Hip().actions.find(operation);
  if (action != Hip().actions.end()) {
    action->second();
  }
  const auto status = Hip().statuses.find(operation);
  return status == Hip().statuses.end() ? hipSuccess : status->second;
}

template <typename Figure, typename Value>
void Write(const std::string& operation, Figure* figure, Value value) {
  if (Hip().silent.count(operation) == 0) {
    *figure = value;
  }
}

}  // namespace
}  // namespace kestrel::tests

using kestrel::tests::Call;
using kestrel::tests::Hip;
using kestrel::tests::Write;

hipError_t hipGetDeviceCount(int* count) {
  const hipError_t status = Call("hipGetDeviceCount");
  Write("hipGetDeviceCount", count, Hip().device_count);
  return status;
}

hipError_t hipGetDeviceProperties(hipDeviceProp_t* properties, int /*device*/) {
  const hipError_t status = Call("hipGetDeviceProperties");
  Write("hipGetDeviceProperties", &properties->totalGlobalMem, Hip().properties_memory);
  return status;
}

hipError_t hipSetDevice(int /*device*/) { return Call("hipSetDevice"); }

hipError_t hipMemGetInfo(std::size_t* free, std::size_t* total) {
  const hipError_t status = Call("hipMemGetInfo");
  Write("hipMemGetInfo", free, Hip().free_memory);
  Write("hipMemGetInfo", total, Hip().total_memory);
  return status;
}

// Returns no text for any other status.
const char* hipGetErrorString(hipError_t status) {
  static_cast<void>(Call("hipGetErrorString"));
  switch (status) {
    case hipErrorOutOfMemory:
      return "out of memory";
    case hipErrorUnknown:
      return "unknown error";
    default:
      return nullptr;
  }
}

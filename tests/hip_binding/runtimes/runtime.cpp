// A HIP runtime of GENERATION with three devices, for the tests of the binding. It does as little
// as it can, and hipGetErrorString returns which of its functions were called.

#include "tests/hip_binding/runtimes/runtime.h"

#include <cstddef>
#include <cstring>
#include <mutex>
#include <string>

namespace kestrel::tests {

namespace {

std::mutex mutex;
// Not by std::to_string: without optimization it brings a unique symbol, and the loader never
// unloads a library that has one.
std::string calls = std::string("runtime ") + static_cast<char>('0' + GENERATION) + ':';
thread_local int current_device = 0;

}  // namespace

void NoteCall(const char* call) {
  const std::lock_guard lock(mutex);
  calls.append(" ").append(call);
}

int SetDevice(int device) {
  current_device = device;
  return 0;
}

}  // namespace kestrel::tests

using kestrel::tests::NoteCall;

extern "C" {

int hipGetDeviceCount(int* count) {
  NoteCall("hipGetDeviceCount");
  *count = 3;
  return 0;
}

int hipGetDevice(int* device) {
  *device = kestrel::tests::current_device;
  return 0;
}

int hipMemGetInfo(std::size_t* free, std::size_t* total) {
  NoteCall("hipMemGetInfo");
  *free = 1;
  *total = 2;
  return 0;
}

const char* hipGetErrorString(int /*status*/) { return kestrel::tests::calls.c_str(); }

}  // extern "C"

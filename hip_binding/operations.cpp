// The operations of HIP that the library calls, each passed on to the runtime of the machine. HIP's
// header is not included: it declares these functions with default visibility, and a host that
// links the library statically would then export them in place of the runtime's.

#include <cstddef>

#include "hip_binding/binding.h"
#include "hip_binding/device_record.h"

namespace kestrel::hip_binding {

namespace {

constexpr int kErrorNoDevice = 100;  // hipErrorNoDevice
constexpr const char* kNoRuntimeText = "no HIP runtime was found";

// Initialised by the compiler: loading the library runs no code of ours.
Binding the_binding;

// Calls the runtime's function of that name; without a runtime, returns `otherwise`.
template <typename Result, typename... Arguments>
Result Call(const char* name, Result otherwise, Arguments... arguments) {
  void* const runtime = the_binding.Runtime();
  if (runtime == nullptr) {
    return otherwise;
  }
  return reinterpret_cast<Result (*)(Arguments...)>(FindFunction(runtime, name))(arguments...);
}

int GetProperties(const DeviceRecord& wanted, void* properties, int device) {
  void* const runtime = the_binding.Runtime();
  return runtime != nullptr ? FillRecord(runtime, wanted, properties, device) : kErrorNoDevice;
}

}  // namespace

void ReportBinding(BindingReport& report) noexcept { the_binding.Report(report); }

// A runtime may throw, so none of these is noexcept.
extern "C" {

int hipGetDeviceCount(int* count) { return Call("hipGetDeviceCount", kErrorNoDevice, count); }

int hipSetDevice(int device) { return Call("hipSetDevice", kErrorNoDevice, device); }

int hipMemGetInfo(std::size_t* free, std::size_t* total) {
  return Call("hipMemGetInfo", kErrorNoDevice, free, total);
}

const char* hipGetErrorString(int status) {
  return Call("hipGetErrorString", kNoRuntimeText, status);
}

// The header that the caller was compiled with decides which of these two it calls.
int hipGetDeviceProperties(void* properties, int device) {
  return GetProperties(kRecordOfHip5, properties, device);
}

int hipGetDevicePropertiesR0600(void* properties, int device) {
  return GetProperties(kRecordOfHip6, properties, device);
}

}  // extern "C"

}  // namespace kestrel::hip_binding

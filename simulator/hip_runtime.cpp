// The operations of HIP. They check in the order of the real runtime: first whether there is any
// device at all, then the arguments.

#include <hip/hip_runtime_api.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

#include "simulator/device_properties.h"
#include "simulator/release.h"
#include "simulator/runtime.h"
#include "simulator/statuses.h"

namespace {

using kestrel::simulator::Call;
using kestrel::simulator::Device;
using kestrel::simulator::LastErrorAfter;
using kestrel::simulator::Runtime;
using kestrel::simulator::StatusName;
using kestrel::simulator::StatusText;
using kestrel::simulator::TextOfStatusIsItsName;
using kestrel::simulator::ThreadState;
using kestrel::simulator::WithRuntime;

hipError_t Remember(Runtime& runtime, hipError_t status) {
  ThreadState& thread = runtime.Thread();
  thread.last_error = LastErrorAfter(status, thread.last_error, runtime.release());
  return status;
}

// Runs the action unless the call fails before it.
template <typename Action>
hipError_t Answer(const Call& call, Action action) {
  return WithRuntime([&](Runtime& runtime) {
    const hipError_t status = runtime.Admit(call);
    return Remember(runtime, status == hipSuccess ? action(runtime) : status);
  });
}

// Like `Answer`, but fails when the machine has no devices.
template <typename Action>
hipError_t AnswerWithDevices(const Call& call, Action action) {
  return WithRuntime([&](Runtime& runtime) {
    const hipError_t status = runtime.AdmitToDevices(call);
    return Remember(runtime, status == hipSuccess ? action(runtime) : status);
  });
}

Call CallOnDevice(const char* operation, int device) {
  return {operation, std::to_string(device), device};
}

// A text that fills its field has no closing NUL, as in the real record.
template <std::size_t kSize>
void SetText(char (&field)[kSize], const std::string& text) {
  std::memcpy(field, text.data(), std::min(text.size(), kSize));
}

hipError_t WriteVersion(const Runtime& runtime, int* version) {
  if (version == nullptr) {
    return hipErrorInvalidValue;
  }
  *version = runtime.release();
  return hipSuccess;
}

// Fills the fields that a machine describes; all others are 0.
template <typename Record>
hipError_t FillProperties(Record* record, int device_id) {
  const Call call = CallOnDevice("hipGetDeviceProperties", device_id);
  return AnswerWithDevices(call, [=](const Runtime& runtime) {
    if (record == nullptr) {
      return hipErrorInvalidValue;
    }
    const Device* device = runtime.DeviceAt(device_id);
    if (device == nullptr) {
      return hipErrorInvalidDevice;
    }
    *record = {};
    SetText(record->name, device->name);
    SetText(record->arch, device->arch);
    record->integrated = device->integrated;
    record->total_global_memory = device->properties_memory;
    return hipSuccess;
  });
}

}  // namespace

hipError_t hipInit(unsigned int flags) {
  return AnswerWithDevices({"hipInit", std::to_string(flags)}, [=](Runtime&) {
    return flags == 0 ? hipSuccess : hipErrorInvalidValue;
  });
}

hipError_t hipRuntimeGetVersion(int* runtimeVersion) {
  return Answer({"hipRuntimeGetVersion"},
                [=](const Runtime& runtime) { return WriteVersion(runtime, runtimeVersion); });
}

hipError_t hipDriverGetVersion(int* driverVersion) {
  return Answer({"hipDriverGetVersion"},
                [=](const Runtime& runtime) { return WriteVersion(runtime, driverVersion); });
}

hipError_t hipGetDeviceCount(int* count) {
  return Answer({"hipGetDeviceCount"}, [=](const Runtime& runtime) {
    if (count == nullptr) {
      return hipErrorInvalidValue;
    }
    *count = runtime.DeviceCount();
    return runtime.Started() ? hipSuccess : hipErrorNoDevice;
  });
}

hipError_t hipGetDevice(int* deviceId) {
  return AnswerWithDevices({"hipGetDevice"}, [=](const Runtime& runtime) {
    if (deviceId == nullptr) {
      return hipErrorInvalidValue;
    }
    *deviceId = runtime.Thread().current_device;
    return hipSuccess;
  });
}

hipError_t hipSetDevice(int deviceId) {
  return AnswerWithDevices(CallOnDevice("hipSetDevice", deviceId), [=](const Runtime& runtime) {
    if (runtime.DeviceAt(deviceId) == nullptr) {
      return hipErrorInvalidDevice;
    }
    runtime.Thread().current_device = deviceId;
    return hipSuccess;
  });
}

hipError_t hipDeviceGetName(char* name, int len, hipDevice_t device) {
  const Call call = CallOnDevice("hipDeviceGetName", device);
  return AnswerWithDevices(call, [=](const Runtime& runtime) {
    if (name == nullptr || len <= 0) {
      return hipErrorInvalidValue;
    }
    const Device* named = runtime.DeviceAt(device);
    if (named == nullptr) {
      return hipErrorInvalidDevice;
    }
    const std::size_t size = named->name.copy(name, static_cast<std::size_t>(len) - 1);
    name[size] = '\0';
    return hipSuccess;
  });
}

hipError_t hipMemGetInfo(std::size_t* free, std::size_t* total) {
  return AnswerWithDevices({"hipMemGetInfo"}, [=](const Runtime& runtime) {
    if (free == nullptr || total == nullptr) {
      return hipErrorInvalidValue;
    }
    const Device* device = runtime.DeviceAt(runtime.Thread().current_device);
    if (device == nullptr) {
      return hipErrorInvalidDevice;
    }
    *free = device->free_memory;
    *total = device->total_memory;
    return hipSuccess;
  });
}

hipError_t hipMalloc(void** ptr, std::size_t size) {
  return AnswerWithDevices({"hipMalloc", std::to_string(size)}, [=](Runtime& runtime) {
    if (ptr == nullptr) {
      return hipErrorInvalidValue;
    }
    if (size == 0) {
      *ptr = nullptr;
      return hipSuccess;
    }
    return runtime.Allocate(runtime.Thread().current_device, size, ptr);
  });
}

hipError_t hipFree(void* ptr) {
  return AnswerWithDevices({"hipFree"}, [=](Runtime& runtime) {
    return ptr == nullptr ? hipSuccess : runtime.Release(ptr);
  });
}

const char* hipGetErrorName(hipError_t hip_error) {
  return WithRuntime([=](Runtime& runtime) {
    static_cast<void>(runtime.Admit({"hipGetErrorName", std::to_string(hip_error)}));
    return StatusName(hip_error);
  });
}

const char* hipGetErrorString(hipError_t hipError) {
  return WithRuntime([=](Runtime& runtime) {
    static_cast<void>(runtime.Admit({"hipGetErrorString", std::to_string(hipError)}));
    return TextOfStatusIsItsName(runtime.release()) ? StatusName(hipError) : StatusText(hipError);
  });
}

hipError_t hipPeekAtLastError() {
  return AnswerWithDevices({"hipPeekAtLastError"},
                           [](const Runtime& runtime) { return runtime.Thread().last_error; });
}

hipError_t hipGetLastError() {
  return WithRuntime([](Runtime& runtime) {
    const hipError_t status = runtime.AdmitToDevices({"hipGetLastError"});
    return status == hipSuccess ? std::exchange(runtime.Thread().last_error, hipSuccess) : status;
  });
}

namespace kestrel::simulator {

int GetDeviceProperties(PropertiesR0000* record, int device) {
  return FillProperties(record, device);
}

int GetDeviceProperties(PropertiesR0600* record, int device) {
  return FillProperties(record, device);
}

}  // namespace kestrel::simulator

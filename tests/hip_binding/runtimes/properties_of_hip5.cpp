#include <cstring>

#include "hip_binding/device_record.h"
#include "tests/hip_binding/runtimes/runtime.h"

extern "C" int hipGetDeviceProperties(void* properties, int /*device*/) {
  kestrel::tests::NoteCall("hipGetDeviceProperties");
  std::memset(properties, 0, kestrel::hip_binding::kRecordOfHip5.size);
  std::memcpy(properties, "Card of HIP 5", sizeof("Card of HIP 5"));
  return 0;
}

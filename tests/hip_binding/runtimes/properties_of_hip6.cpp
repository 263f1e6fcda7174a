#include <cstring>

#include "hip_binding/device_record.h"
#include "tests/hip_binding/runtimes/runtime.h"

extern "C" int hipGetDevicePropertiesR0600(void* properties, int /*device*/) {
  kestrel::tests::NoteCall("hipGetDevicePropertiesR0600");
  std::memset(properties, 0, kestrel::hip_binding::kRecordOfHip6.size);
  std::memcpy(properties, "Card of HIP 6", sizeof("Card of HIP 6"));
  return 0;
}

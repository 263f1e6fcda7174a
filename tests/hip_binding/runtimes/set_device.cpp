// Apart from the other functions, since one runtime lacks this.

#include "tests/hip_binding/runtimes/runtime.h"

extern "C" int hipSetDevice(int device) {
  kestrel::tests::NoteCall("hipSetDevice");
  return kestrel::tests::SetDevice(device);
}

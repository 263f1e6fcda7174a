#pragma once

namespace kestrel::tests {

void NoteCall(const char* call);
int SetDevice(int device);

}  // namespace kestrel::tests

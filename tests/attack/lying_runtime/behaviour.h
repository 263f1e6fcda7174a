#pragma once

#include <optional>
#include <string>

namespace kestrel::tests {

// How the lying runtime behaves. Read from ATTACK_HIP at each call: words that are separated by
// blanks. Without any it is an honest runtime with two devices.
struct Behaviour {
  std::string operation;      // "in=hipMemGetInfo": what follows concerns this operation,
  std::optional<int> device;  // "device=1": for this device alone
  std::optional<int> status;  // "status=4": it returns this status
  bool writes = false;        // "writes": after writing its outputs, with nonsense
  std::string thrown;         // "throw=bad_alloc", "throw=number", "throw=error", or in a thread
                              // of its own: "throw=in-thread"
  bool null_text = false;     // "null-text": hipGetErrorString returns null
  std::optional<int> count;   // "count=-1": so many devices
  bool unterminated = false;  // "unterminated": names without a terminating NUL
};

Behaviour TheBehaviour();

// Whether a call misbehaves as above.
bool Concerns(const Behaviour& behaviour, const char* operation, std::optional<int> device);

// Throws if the behaviour says so.
void Throw(const Behaviour& behaviour);

}  // namespace kestrel::tests

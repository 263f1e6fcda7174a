#pragma once

#include <sys/types.h>

#include <string>

#include "tests/attack/allocations.h"
#include "tests/attack/call.h"

namespace kestrel::tests {

// What happens to a call that is made in a process of its own.
struct Plan {
  int pid = 0;          // the process that the meters of processes measure
  bool warm = false;    // whether the call has succeeded in that process before
  int system_call = 0;  // made `padding` times first, with arguments that the kernel refuses
  int padding = 0;
  AllocationFaults allocations;
};

struct Outcome {
  pid_t child = 0;
  std::string end;       // "exit 0", "signal 11", or "timeout"
  int leaked = 0;        // descriptors that the call left open
  long allocations = 0;  // that it made
  std::string first;     // what the call returned, "bad_alloc" or "exception"
  std::string again;     // what the next call returned, without a fault
  std::string error;     // what both wrote to standard error
};

// The call is made between two system calls getppid(2), which mark it in a trace.
Outcome RunInChild(const Call& call, const Plan& plan);

}  // namespace kestrel::tests

#pragma once

namespace kestrel::tests {

// Which allocations of the process fail, counted from 0 once they are armed.
struct AllocationFaults {
  long first = -1;         // none if negative
  bool all_later = false;  // whether those after the first fail too
};

// The program replaces the allocation functions of the C library, also for the libraries that it
// loads.
void ArmAllocations(AllocationFaults faults);

// Lets all allocations succeed again. Returns how many there were since they were armed.
long DisarmAllocations();

}  // namespace kestrel::tests

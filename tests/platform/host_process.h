#pragma once

namespace kestrel::tests {

// Returns the pid of this process.
int OwnPid();

// Returns how many files, sockets or other system objects this process has open.
int OpenHandleCount();

}  // namespace kestrel::tests

#pragma once

namespace kestrel::tests {

// The pid of this very process.
int OwnPid();

// How many files, sockets or other system objects this process holds open.
int OpenHandleCount();

}  // namespace kestrel::tests

#pragma once

namespace kestrel::tests {

// Makes the next `count` calls of open and openat in this program fail with EINTR, as an open that
// waits for a file system in user space does when a signal arrives.
void InterruptOpens(int count);

}  // namespace kestrel::tests

#pragma once

namespace kestrel::command {

// A reader that closes the pipe makes the next write fail instead of ending the process by a
// signal.
void KeepRunningAfterClosedPipe();

}  // namespace kestrel::command

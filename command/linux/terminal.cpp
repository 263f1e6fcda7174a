#include "command/terminal.h"

#include <csignal>

namespace kestrel::command {

void KeepRunningAfterClosedPipe() { std::signal(SIGPIPE, SIG_IGN); }

}  // namespace kestrel::command

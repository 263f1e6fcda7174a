#include "command/terminal.h"

namespace kestrel::command {

void KeepRunningAfterClosedPipe() {}  // Windows has no such signal

}  // namespace kestrel::command

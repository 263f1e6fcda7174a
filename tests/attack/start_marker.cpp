// A library to preload (LD_PRELOAD) that marks in a trace where the loader has ended: what comes
// after this getppid(2) are the program's own system calls.

#include <sys/syscall.h>
#include <unistd.h>

namespace {

__attribute__((constructor)) void MarkStart() { syscall(SYS_getppid); }

}  // namespace

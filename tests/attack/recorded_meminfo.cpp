// A library to preload (LD_PRELOAD) that opens the file of ATTACK_MEMINFO in place of
// /proc/meminfo: the free memory of the machine moves by any amount while other programs run, that
// of a recorded machine does not.

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdlib>
#include <cstring>

extern "C" int openat(int directory, const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  const bool is_replaced = std::strcmp(path, "/proc/meminfo") == 0;
  return static_cast<int>(syscall(SYS_openat, directory,
                                  is_replaced ? std::getenv("ATTACK_MEMINFO") : path, flags, mode));
}

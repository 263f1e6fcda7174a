// Calls HIP in a child that was forked before the first call of the process, in the process itself,
// and in a child that was forked afterwards, and prints each process's count of devices.

#include <sys/wait.h>
#include <unistd.h>

#include <iostream>

#include "tests/hip_binding/operations.h"

namespace {

void Count(const char* process) {
  int count = 0;
  static_cast<void>(hipGetDeviceCount(&count));
  std::cout << process << ": " << count << std::endl;
}

void CountInChild(const char* process) {
  const pid_t child = fork();
  if (child == 0) {
    Count(process);
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
}

}  // namespace

int main() {
  CountInChild("first child");
  Count("parent");
  CountInChild("second child");
}

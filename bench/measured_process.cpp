#include "bench/measured_process.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace kestrel::bench {

namespace {

class Sleeper {
 public:
  Sleeper() : process_(fork()) {
    if (process_ == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      for (;;) {
        pause();
      }
    }
  }
  Sleeper(const Sleeper&) = delete;
  Sleeper& operator=(const Sleeper&) = delete;
  ~Sleeper() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }

  [[nodiscard]] int process() const { return process_; }

 private:
  pid_t process_;
};

}  // namespace

int OwnProcess() {
  static const int process = getpid();
  return process;
}

int OtherProcess() {
  static const Sleeper sleeper;
  return sleeper.process();
}

}  // namespace kestrel::bench

// cpu_usage_probe spin THREADS           keeps that many threads busy until it is killed
// cpu_usage_probe measure PID INTERVAL   prints the usage of a process over so many milliseconds

#include <utils/cpu_usage.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace {

[[noreturn]] void Spin(int threads) {
  volatile bool forever = true;
  const auto spin = [&forever] {
    while (forever) {
    }
  };
  for (int thread = 1; thread < threads; ++thread) {
    std::thread(spin).detach();
  }
  spin();
  std::abort();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], "spin") == 0) {
    Spin(std::atoi(argv[2]));
  }
  if (argc == 4 && std::strcmp(argv[1], "measure") == 0) {
    const auto usage = kestrel_utils::GetCpuUsage(std::atoi(argv[2]), std::atoi(argv[3]));
    std::printf("%.1f\n", static_cast<double>(usage));
    return usage < 0 ? 1 : 0;
  }
  std::fputs("usage: cpu_usage_probe spin THREADS | measure PID INTERVAL\n", stderr);
  return 2;
}

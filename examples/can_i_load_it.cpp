// Prints how many GPUs there are and whether eight more GiB of memory can be allocated.

#include <system/hardware_survey.h>
#include <utils/memory_observer.h>

#include <iostream>

int main() {
  const auto [result, gpus] = kestrel::system::SurveyGpus();
  std::cout << gpus.size() << " GPUs. " << result.message << '\n';
  const kestrel_utils::MemoryObserver memory;
  std::cout << (memory.willFailToAllocate(8LL << 30) ? "Too large.\n" : "It fits.\n");
}

// Whether eight more gigabytes would fit, and which GPUs there are.

#include <system/hardware_survey.h>
#include <utils/memory_observer.h>

#include <iostream>

int main() {
  const auto [result, gpus] = kestrel::system::SurveyGpus();
  std::cout << gpus.size() << " GPUs. " << result.message << '\n';
  const kestrel_utils::MemoryObserver memory;
  std::cout << (memory.willFailToAllocate(8LL << 30) ? "Too large.\n" : "It fits.\n");
}

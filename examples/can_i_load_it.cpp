// Whether a model of so many bytes is worth loading here.

#include <system/hardware_survey.h>
#include <utils/memory_observer.h>

#include <iostream>

int main() {
  const long long model_bytes = 8LL << 30;
  const auto survey = kestrel::system::SurveyHardware();
  if (survey.gpuSurvey.first.code != kestrel::system::ResultCode::Success) {
    std::cout << survey.gpuSurvey.first.message << '\n';
  }
  for (const auto& gpu : survey.gpuSurvey.second) {
    std::cout << gpu.name << ": " << gpu.totalMemory << " bytes\n";
  }
  const kestrel_utils::MemoryObserver memory;
  std::cout << (memory.willFailToAllocate(model_bytes) ? "It would not fit.\n" : "It fits.\n");
}

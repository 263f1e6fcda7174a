#include <system/hardware_survey.h>
#include <utils/cpu_usage.h>
#include <utils/memory_observer.h>

#include <iostream>
#include <utility>

#include "meters.h"

#ifdef CONSUMER_HAS_HIP
extern "C" int hipGetDeviceCount(int* count);
int CallsOfOwnHip();
#endif

using namespace kestrel::system;

namespace {

bool RecordsTravel() {
  HardwareSurveyResult survey = SurveyHardware();
  HardwareSurveyResult copy(survey);
  HardwareSurveyResult moved(std::move(copy));
  copy = moved;
  moved = std::move(copy);
  GpuInfo gpu;
  gpu.otherInfo["key"] = "value";
  GpuInfo gpu_copy(gpu);
  gpu = std::move(gpu_copy);
  CpuInfo cpu = SurveyCpu().second;
  CpuInfo cpu_copy(cpu);
  cpu = std::move(cpu_copy);
  return moved.cpuSurvey.first.code == ResultCode::Success && gpu.otherInfo.size() == 1 &&
         cpu.architecture == CpuArchitecture::x86_64 &&
         moved.gpuSurvey.second.size() == SurveyGpus().second.size();
}

bool NamesAnswer() {
  return CpuArchitectureToStr(CpuArchitecture::ARM64) == "ARM64" &&
         CpuInstructionSetExtensionToStr(CpuInstructionSetExtension::AdvSIMD) == "AdvSIMD" &&
         CpuInstructionSetExtensionsToStr({CpuInstructionSetExtension::AVX2}) == "AVX2" &&
         GpuIntegrationTypeToStr(GpuIntegrationType::Discrete) == "Discrete" &&
         GpuSoftwarePlatformToStr(GpuSoftwarePlatform::Metal) == "Metal";
}

#ifdef CONSUMER_HAS_HIP
bool OwnHipIsLeftAlone() {
  int count = 0;
  const int calls_of_the_library = CallsOfOwnHip();
  return hipGetDeviceCount(&count) == 0 && count == 77 && calls_of_the_library == 0 &&
         CallsOfOwnHip() == 1;
}
#else
bool OwnHipIsLeftAlone() { return true; }
#endif

}  // namespace

int main() {
  if (!RecordsTravel() || !NamesAnswer() || !MetersAnswer() || !OwnHipIsLeftAlone()) {
    std::cerr << "The library does not answer as a host expects.\n";
    return 1;
  }
  std::cout << "The library answers.\n";
}

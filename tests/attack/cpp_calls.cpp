// Every function of the C++ library that measures, surveys or allocates.

#include <string>
#include <vector>

#include "system/hardware_survey.h"
#include "tests/attack/call.h"
#include "utils/cpu_usage.h"
#include "utils/memory_observer.h"

namespace kestrel::tests {

namespace {

using kestrel_utils::MemoryObserver;

template <typename Number>
std::string NumberText(Number number) {
  return std::to_string(number);
}

std::string TextOf(const system::Result& result) {
  return std::to_string(static_cast<int>(result.code)) + " '" + result.message + "'";
}

std::string CpuText(const std::pair<system::Result, system::CpuInfo>& survey) {
  return TextOf(survey.first) + " " + CpuArchitectureToStr(survey.second.architecture) + " [" +
         CpuInstructionSetExtensionsToStr(survey.second.supportedInstructionSetExtensions) + "]";
}

std::string GpusText(const std::pair<system::Result, std::vector<system::GpuInfo>>& survey) {
  std::string text = TextOf(survey.first) + " " + std::to_string(survey.second.size()) + " GPUs";
  for (const system::GpuInfo& gpu : survey.second) {
    text += "; " + std::to_string(gpu.deviceId) + " '" + gpu.name + "' " +
            GpuIntegrationTypeToStr(gpu.integrationType) + " " + std::to_string(gpu.totalMemory) +
            " " + GpuSoftwarePlatformToStr(gpu.detectionPlatform);
    for (const auto& [key, value] : gpu.otherInfo) {
      text.append(" ").append(key).append("='").append(value).append("'");
    }
  }
  return text;
}

std::string HardwareText(const system::HardwareSurveyResult& survey) {
  return GpusText(survey.gpuSurvey) + " | " + CpuText(survey.cpuSurvey);
}

std::string NamesText(const std::string& names) { return names; }

std::string NamesOfAll(Pids /*pids*/) {
  using system::CpuInstructionSetExtension;
  return system::CpuInstructionSetExtensionsToStr({CpuInstructionSetExtension::AVX,
                                                   CpuInstructionSetExtension::AVX2,
                                                   CpuInstructionSetExtension::AdvSIMD});
}

auto SurveyCpu(Pids /*pids*/) { return system::SurveyCpu(); }
auto SurveyGpus(Pids /*pids*/) { return system::SurveyGpus(); }
auto SurveyHardware(Pids /*pids*/) { return system::SurveyHardware(); }
auto CpuUsage(Pids pids) { return kestrel_utils::GetCpuUsage(pids.other, 1); }
auto PhysicalRam(Pids /*pids*/) { return MemoryObserver::getMachinePhysicalRAM(); }
auto AvailableRam(Pids /*pids*/) { return MemoryObserver().getAvailableRAM(); }
auto UsedRam(Pids /*pids*/) { return MemoryObserver().getUsedRAM(); }
auto ProcessRam(Pids pids) { return MemoryObserver::getProcessUsedRAM(pids.other); }
auto OwnCpuUsage(Pids pids) { return kestrel_utils::GetCpuUsage(pids.own, 1); }
auto OwnRam(Pids pids) { return MemoryObserver::getProcessUsedRAM(pids.own); }
auto PhysicalVram(Pids /*pids*/) { return MemoryObserver::getMachinePhysicalVRAM(); }
auto AvailableVram(Pids /*pids*/) { return MemoryObserver().getAvailableVRAM(); }
auto FailsToAllocate(Pids /*pids*/) { return MemoryObserver().willFailToAllocate(kForecastBytes); }

}  // namespace

std::vector<Call> Calls() {
  return {
      CallOf<SurveyCpu, CpuText>::Named("SurveyCpu"),
      CallOf<SurveyGpus, GpusText>::Named("SurveyGpus"),
      CallOf<SurveyHardware, HardwareText>::Named("SurveyHardware"),
      CallOf<NamesOfAll, NamesText>::Named("CpuInstructionSetExtensionsToStr"),
      CallOf<CpuUsage, NumberText<float>>::Named("GetCpuUsage"),
      CallOf<PhysicalRam, NumberText<long long>>::Named("getMachinePhysicalRAM"),
      CallOf<AvailableRam, NumberText<long long>>::Named("getAvailableRAM"),
      CallOf<UsedRam, NumberText<long long>>::Named("getUsedRAM"),
      CallOf<ProcessRam, NumberText<long long>>::Named("getProcessUsedRAM"),
      CallOf<OwnCpuUsage, NumberText<float>>::Named("GetCpuUsage of itself"),
      CallOf<OwnRam, NumberText<long long>>::Named("getProcessUsedRAM of itself"),
      CallOf<PhysicalVram, NumberText<long long>>::Named("getMachinePhysicalVRAM"),
      CallOf<AvailableVram, NumberText<long long>>::Named("getAvailableVRAM"),
      CallOf<FailsToAllocate, NumberText<bool>>::Named("willFailToAllocate"),
  };
}

}  // namespace kestrel::tests

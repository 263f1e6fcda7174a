// Compares the C interface with the C++ interface in one process, call by call.

#include <kestrelcore.h>
#include <system/hardware_survey.h>
#include <utils/cpu_usage.h>
#include <utils/memory_observer.h>

#include <cstdint>
#include <iostream>
#include <string>
#include <vector>

namespace {

using kestrel_utils::MemoryObserver;
namespace sys = kestrel::system;

bool agrees = true;

template <typename Cpp, typename C>
void Compare(const std::string& what, const Cpp& cpp, const C& c) {
  if (!(cpp == c)) {
    std::cout << what << ": " << cpp << " in C++, " << c << " in C\n";
    agrees = false;
  }
}

void CompareGpus() {
  const auto [result, gpus] = sys::SurveyGpus();
  kestrel_result c_result{sizeof(kestrel_result), KESTREL_OK, {}};
  std::vector<kestrel_gpu> c_gpus(gpus.size() + 1);
  c_gpus[0].struct_size = sizeof(kestrel_gpu);
  std::size_t count = 0;
  const auto status = kestrel_survey_gpus(c_gpus.data(), c_gpus.size(), &count, &c_result);
  Compare("success", result.code == sys::ResultCode::Success, status == KESTREL_OK);
  Compare("message", result.message, std::string(c_result.message));
  Compare("number of GPUs", gpus.size(), count);
  for (std::size_t i = 0; i < gpus.size(); ++i) {
    Compare("name", gpus[i].name, std::string(c_gpus[i].name));
    Compare("device", gpus[i].deviceId, c_gpus[i].device_id);
    Compare("total memory", gpus[i].totalMemory, c_gpus[i].total_memory);
    Compare("dedicated memory", gpus[i].dedicatedMemory, c_gpus[i].dedicated_memory);
    Compare("integration", sys::GpuIntegrationTypeToStr(gpus[i].integrationType),
            std::string(kestrel_gpu_integration_name(c_gpus[i].integration_type)));
    Compare("platform", sys::GpuSoftwarePlatformToStr(gpus[i].detectionPlatform),
            std::string(kestrel_gpu_platform_name(c_gpus[i].detection_platform)));
    Compare("version", gpus[i].detectionPlatformVersion,
            std::string(c_gpus[i].detection_platform_version));
    Compare("architecture", gpus[i].otherInfo.at("gcnArchName"),
            std::string(c_gpus[i].architecture_name));
  }
}

void CompareCpu() {
  const auto [result, cpu] = sys::SurveyCpu();
  kestrel_cpu c_cpu{sizeof(kestrel_cpu), 0, 0};
  Compare("success", result.code == sys::ResultCode::Success,
          kestrel_survey_cpu(&c_cpu, nullptr) == KESTREL_OK);
  Compare("architecture", sys::CpuArchitectureToStr(cpu.architecture),
          std::string(kestrel_cpu_architecture_name(c_cpu.architecture)));
  Compare("extensions",
          sys::CpuInstructionSetExtensionsToStr(cpu.supportedInstructionSetExtensions),
          std::string(kestrel_cpu_extension_names(c_cpu.extensions)));
}

// Without a result the C calls write the diagnostics that the C++ calls write, so all of them are
// there twice.
void CompareMeters() {
  const MemoryObserver memory;
  std::uint64_t bytes = 0;
  static_cast<void>(kestrel_machine_physical_ram(&bytes, nullptr));
  Compare("physical RAM", MemoryObserver::getMachinePhysicalRAM(), static_cast<long long>(bytes));
  const long long physical_vram = MemoryObserver::getMachinePhysicalVRAM();
  static_cast<void>(kestrel_machine_physical_vram(&bytes, nullptr));
  Compare("physical VRAM", physical_vram, static_cast<long long>(bytes));
  static_cast<void>(kestrel_available_vram(&bytes, nullptr));
  Compare("available VRAM", memory.getAvailableVRAM(), static_cast<long long>(bytes));
  for (const long long size : {0LL, -1LL, 1LL << 20, 1LL << 50}) {
    std::int32_t will_fail = 77;
    static_cast<void>(
        kestrel_will_fail_to_allocate(static_cast<std::uint64_t>(size), &will_fail, nullptr));
    Compare("forecast", memory.willFailToAllocate(size), will_fail == 1);
  }
  float percent = 77;
  static_cast<void>(kestrel_cpu_usage(0, 0, &percent, nullptr));
  Compare("CPU usage", kestrel_utils::GetCpuUsage(0, 0), percent);
}

}  // namespace

int main() {
  CompareGpus();
  CompareCpu();
  CompareMeters();
  if (agrees) {
    std::cout << "The interfaces agree.\n";
  }
  return agrees ? 0 : 1;
}

#include "routines.h"

#include <system/hardware_survey.h>
#include <utils/cpu_usage.h>
#include <utils/memory_observer.h>

#include <cstdint>
#include <iostream>
#include <string>

#include "byte_text.h"

namespace {

using kestrel::system::GpuInfo;
using kestrel::system::HardwareSurveyResult;
using kestrel::system::ResultCode;
using kestrel_utils::MemoryObserver;

// Report texts are fixed, including their wording.

constexpr const char* kHeadingLine = "========================";
constexpr const char* kBlockEndLine = "------------------------";

// The library's error value -1 prints as 2^64 - 1 bytes, by design.
std::string AmountOf(long long bytes, bool decimalUnits) {
  return BytesToStr(static_cast<std::uint64_t>(bytes), decimalUnits);
}

void PrintCpuBlock(const HardwareSurveyResult& survey) {
  const std::string indent(2, ' ');
  const auto& [result, cpu] = survey.cpuSurvey;
  if (result.code != ResultCode::Success) {
    std::cout << "Failed to retrieve CPU information: " << result.message << std::endl;
    return;
  }
  std::cout << "Cpu Information:" << std::endl;
  std::cout << kHeadingLine << std::endl;
  std::cout << indent << "CPU Architecture: " << CpuArchitectureToStr(cpu.architecture)
            << std::endl;
  std::cout << indent << "Supported Instruction Set Extensions: "
            << CpuInstructionSetExtensionsToStr(cpu.supportedInstructionSetExtensions) << std::endl;
  std::cout << indent << kBlockEndLine << std::endl;
}

void PrintGpu(const GpuInfo& gpu, const std::string& indent) {
  std::cout << indent << "Gpu Name: " << gpu.name << std::endl;
  std::cout << indent << "Device ID: " << gpu.deviceId << std::endl;
  std::cout << indent << "Total Memory: " << BytesToStr(gpu.totalMemory, false) << std::endl;
  std::cout << indent << "Dedicated Memory: " << BytesToStr(gpu.dedicatedMemory, false)
            << std::endl;
  std::cout << indent << "Integration Type: " << GpuIntegrationTypeToStr(gpu.integrationType)
            << std::endl;
  std::cout << indent << "Detection Platform: " << GpuSoftwarePlatformToStr(gpu.detectionPlatform)
            << std::endl;
  std::cout << indent << "Detection Platform Version: " << gpu.detectionPlatformVersion
            << std::endl;
  if (!gpu.otherInfo.empty()) {
    std::cout << indent << "Other Info:" << std::endl;
    for (const auto& [key, value] : gpu.otherInfo) {
      std::cout << indent << indent << key << ": " << value << std::endl;
    }
  }
  std::cout << indent << kBlockEndLine << std::endl;
}

void PrintGpuBlock(const HardwareSurveyResult& survey) {
  const std::string indent(2, ' ');
  const auto& [result, gpus] = survey.gpuSurvey;
  if (result.code != ResultCode::Success) {
    std::cout << "Failed to retrieve GPU information: " << result.message << std::endl;
    return;
  }
  std::cout << "Gpu Information:" << std::endl;
  std::cout << kHeadingLine << std::endl;
  for (const GpuInfo& gpu : gpus) {
    PrintGpu(gpu, indent);
  }
  std::cout << indent << kBlockEndLine << std::endl;
}

}  // namespace

void PrintHardwareSurvey() {
  const HardwareSurveyResult survey = kestrel::system::SurveyHardware();
  PrintCpuBlock(survey);
  PrintGpuBlock(survey);
}

// Measures before it writes, so that a message of the meter does not split the line.
void PrintCpuUsage(int pid, int split_ms) {
  const float usage = kestrel_utils::GetCpuUsage(pid, split_ms);
  std::cout << "CPU Usage (PID '" << pid << "') ....... " << usage << "%" << std::endl;
}

// The percent sign after an amount and the powers of 1000 are part of this report's format. The
// label is flushed first, as below.
void PrintProcessMemory(int pid) {
  std::cout << "Mem Usage (PID '" << pid << "') ....... " << std::flush;
  std::cout << AmountOf(MemoryObserver::getProcessUsedRAM(pid), true) << "%" << std::endl;
}

// Each label is flushed before its meter is called, so that a message of the meter comes after it.
void PrintMachineMemory() {
  const MemoryObserver observer;
  std::cout << "Machine physical RAM ........ " << std::flush;
  std::cout << AmountOf(MemoryObserver::getMachinePhysicalRAM(), false) << std::endl;
  std::cout << "Free RAM .................... " << std::flush;
  std::cout << AmountOf(observer.getAvailableRAM(), false) << std::endl;
  std::cout << "Machine physical VRAM ....... " << std::flush;
  std::cout << AmountOf(MemoryObserver::getMachinePhysicalVRAM(), false) << std::endl;
  std::cout << "Free VRAM ................... " << std::flush;
  std::cout << AmountOf(observer.getAvailableVRAM(), false) << std::endl;
  std::cout << "------------------------------------\n" << std::endl;
}

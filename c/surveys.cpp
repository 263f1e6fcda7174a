#include <string>
#include <utility>
#include <vector>

#include "c/call.h"
#include "system/cpu_survey.h"
#include "system/gpu_survey.h"

namespace kestrel::c {

namespace {

namespace sys = kestrel::system;

kestrel_status StatusOf(sys::ResultCode code) noexcept {
  switch (code) {
    case sys::ResultCode::Success:
      return KESTREL_OK;
    case sys::ResultCode::NoDevices:
      return KESTREL_NO_DEVICES;
    case sys::ResultCode::DeviceQueryFailed:
      return KESTREL_DEVICE_QUERY_FAILED;
    case sys::ResultCode::Unknown:
    case sys::ResultCode::Failure:
      break;
  }
  return KESTREL_ARCHITECTURE_UNSUPPORTED;
}

kestrel_status Report(kestrel_result* result, const sys::Result& survey) noexcept {
  return c::Report(result, StatusOf(survey.code), survey.message.c_str());
}

uint32_t ExtensionBits(const sys::CpuInfo& info) {
  uint32_t bits = 0;
  for (const auto extension : info.supportedInstructionSetExtensions) {
    bits |= uint32_t{1} << static_cast<uint32_t>(extension);
  }
  return bits;
}

template <std::size_t kSize>
void CopyText(const std::string& text, char (&field)[kSize]) noexcept {
  c::CopyText(text.data(), text.size(), field);
}

kestrel_gpu ToRecord(const sys::GpuInfo& info) {
  kestrel_gpu gpu{};
  gpu.total_memory = info.totalMemory;
  gpu.dedicated_memory = info.dedicatedMemory;
  gpu.device_id = info.deviceId;
  gpu.integration_type = static_cast<int32_t>(info.integrationType);
  gpu.detection_platform = static_cast<int32_t>(info.detectionPlatform);
  CopyText(info.name, gpu.name);
  CopyText(info.detectionPlatformVersion, gpu.detection_platform_version);
  const auto architecture = info.otherInfo.find("gcnArchName");
  if (architecture != info.otherInfo.end()) {
    CopyText(architecture->second, gpu.architecture_name);
  }
  return gpu;
}

// The caller's list of GPU records.
struct GpuList {
  kestrel_gpu* records;
  size_t capacity;
  size_t* count;
};

bool IsValid(const GpuList& list) noexcept {
  return list.count != nullptr &&
         (list.records == nullptr || list.capacity == 0 || IsRecord(list.records));
}

constexpr const char* kInvalidGpuList = "count is null, or gpus[0].struct_size is not set";
constexpr const char* kInvalidCpu = "cpu is null, or its struct_size is not set";

void WriteGpus(const GpuList& list, const std::vector<sys::GpuInfo>& gpus) {
  const std::size_t stride = list.capacity > 0 ? list.records->struct_size : 0;
  char* record = reinterpret_cast<char*>(list.records);
  for (const auto& gpu : gpus) {
    WriteRecord(record, stride, ToRecord(gpu));
    record += stride;
  }
}

kestrel_status SurveyGpus(const GpuList& list, kestrel_result* result) {
  const auto [survey, gpus] = sys::SurveyGpus();
  if (survey.code != sys::ResultCode::Success) {
    return Report(result, survey);
  }
  *list.count = gpus.size();
  if (list.records != nullptr) {
    if (gpus.size() > list.capacity) {
      return c::Report(result, KESTREL_CAPACITY_TOO_SMALL, "There are more GPUs than records");
    }
    WriteGpus(list, gpus);
  }
  return ReportSuccess(result);
}

kestrel_status SurveyCpu(kestrel_cpu* cpu, kestrel_result* result) {
  const auto [survey, info] = sys::SurveyCpu();
  kestrel_cpu record{};
  record.architecture = static_cast<int32_t>(info.architecture);
  record.extensions = ExtensionBits(info);
  WriteRecord(cpu, cpu->struct_size, record);
  return Report(result, survey);
}

kestrel_status GuardedSurveyGpus(const GpuList& list, kestrel_result* result) noexcept {
  return Guarded(result, [&] {
    if (!IsValid(list)) {
      return ReportInvalid(result, kInvalidGpuList);
    }
    *list.count = 0;
    return SurveyGpus(list, result);
  });
}

kestrel_status GuardedSurveyCpu(kestrel_cpu* cpu, kestrel_result* result) noexcept {
  return Guarded(result, [&] {
    if (!IsRecord(cpu)) {
      return ReportInvalid(result, kInvalidCpu);
    }
    kestrel_cpu unknown{};
    unknown.architecture = KESTREL_CPU_ARCHITECTURE_UNKNOWN;
    WriteRecord(cpu, cpu->struct_size, unknown);
    return SurveyCpu(cpu, result);
  });
}

// Reports an invalid argument of one survey to both. Returns `KESTREL_INVALID_ARGUMENT`.
kestrel_status ReportInvalidToBoth(kestrel_result* gpu_result, kestrel_result* cpu_result,
                                   const char* message) noexcept {
  for (kestrel_result* const result : {gpu_result, cpu_result}) {
    if (IsValidResult(result)) {
      ReportInvalid(result, message);
    }
  }
  return KESTREL_INVALID_ARGUMENT;
}

// Returns `KESTREL_OK` if both surveys may begin, otherwise the status that the call fails with,
// reported to both.
kestrel_status BeginBoth(const GpuList& list, kestrel_result* gpu_result, const kestrel_cpu* cpu,
                         kestrel_result* cpu_result) noexcept {
  if (!IsValidResult(gpu_result) || !IsValidResult(cpu_result)) {
    return ReportInvalidToBoth(gpu_result, cpu_result,
                               "The struct_size of the other result is not set");
  }
  BeginCall(gpu_result);  // returns what the next call returns: the processor alone decides
  if (const kestrel_status begun = BeginCall(cpu_result); begun != KESTREL_OK) {
    return begun;
  }
  if (!IsValid(list) || !IsRecord(cpu)) {
    return ReportInvalidToBoth(gpu_result, cpu_result,
                               IsRecord(cpu) ? kInvalidGpuList : kInvalidCpu);
  }
  return KESTREL_OK;
}

}  // namespace

}  // namespace kestrel::c

kestrel_status kestrel_survey_cpu(kestrel_cpu* cpu, kestrel_result* result) {
  return kestrel::c::GuardedSurveyCpu(cpu, result);
}

// clang-tidy does not see that `count` is written through a GpuList.
// NOLINTBEGIN(readability-non-const-parameter)

kestrel_status kestrel_survey_gpus(kestrel_gpu* gpus, size_t capacity, size_t* count,
                                   kestrel_result* result) {
  return kestrel::c::GuardedSurveyGpus({gpus, capacity, count}, result);
}

kestrel_status kestrel_survey_hardware(kestrel_gpu* gpus, size_t capacity, size_t* count,
                                       kestrel_result* gpu_result, kestrel_cpu* cpu,
                                       kestrel_result* cpu_result) {
  const kestrel::c::GpuList list{gpus, capacity, count};
  const kestrel_status begun = kestrel::c::BeginBoth(list, gpu_result, cpu, cpu_result);
  if (begun != KESTREL_OK) {
    return begun;
  }
  const kestrel_status gpu_status = kestrel::c::GuardedSurveyGpus(list, gpu_result);
  const kestrel_status cpu_status = kestrel::c::GuardedSurveyCpu(cpu, cpu_result);
  return gpu_status != KESTREL_OK ? gpu_status : cpu_status;
}

// NOLINTEND(readability-non-const-parameter)

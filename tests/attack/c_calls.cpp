// Every call of the C interface that can fail.

#include <kestrelcore.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/attack/call.h"

namespace kestrel::tests {

namespace {

constexpr std::size_t kCapacity = 16;

// What a call returned and wrote. Bytes that a call left alone are easy to see.
struct Answer {
  kestrel_status status = -1;
  kestrel_result result = {sizeof(kestrel_result), -1, {}};
  std::uint64_t bytes = 0xABABABAB;
  std::uint64_t total = 0xABABABAB;
};

struct Percent : Answer {
  float percent = -7;
};

struct WillFail : Answer {
  std::int32_t fails = -7;
};

struct Forecast : Answer {
  kestrel_forecast forecast{};
};

struct Survey : Answer {
  std::array<kestrel_gpu, kCapacity> gpus{};
  std::size_t count = 99;
  kestrel_cpu cpu{};
  kestrel_result cpu_result = {sizeof(kestrel_result), -1, {}};
};

std::string TextOf(const kestrel_result& result) {
  return std::string(kestrel_status_name(result.status)) + " '" + result.message + "'";
}

std::string StatusText(const Answer& answer) {
  // Both say the same: a difference shows in the text.
  return std::string(kestrel_status_name(answer.status)) + " " + TextOf(answer.result);
}

std::string BytesText(const Answer& answer) {
  return StatusText(answer) + " " + std::to_string(answer.bytes);
}

std::string BothBytesText(const Answer& answer) {
  return BytesText(answer) + " " + std::to_string(answer.total);
}

std::string PercentText(const Percent& answer) {
  return StatusText(answer) + " " + std::to_string(answer.percent);
}

std::string WillFailText(const WillFail& answer) {
  return StatusText(answer) + " " + std::to_string(answer.fails);
}

std::string ForecastText(const Forecast& answer) {
  const kestrel_forecast& forecast = answer.forecast;
  return StatusText(answer) + " " + std::to_string(forecast.outcome) + " " +
         std::to_string(forecast.limit) + " " + std::to_string(forecast.missing) + " " +
         std::to_string(forecast.available) + " " + std::to_string(forecast.committable) + " '" +
         forecast.limit_group + "'";
}

std::string CpuText(const Survey& answer) {
  return StatusText(answer) + " " + std::to_string(answer.cpu.architecture) + " " +
         std::to_string(answer.cpu.extensions);
}

std::string GpusText(const Survey& answer) {
  std::string text = StatusText(answer) + " " + std::to_string(answer.count) + " GPUs";
  for (std::size_t i = 0; i < answer.count && i < kCapacity; ++i) {
    const kestrel_gpu& gpu = answer.gpus[i];
    text += "; " + std::to_string(gpu.device_id) + " '" + gpu.name + "' '" + gpu.architecture_name +
            "' " + std::to_string(gpu.integration_type) + " " + std::to_string(gpu.total_memory) +
            " " + std::to_string(gpu.detection_platform);
  }
  return text;
}

std::string HardwareText(const Survey& answer) {
  return GpusText(answer) + " | " + TextOf(answer.cpu_result) + " " +
         std::to_string(answer.cpu.architecture) + " " + std::to_string(answer.cpu.extensions);
}

template <typename Result, typename Measure>
Result Asked(Measure measure) {
  Result answer;
  answer.status = measure(answer);
  return answer;
}

auto SurveyCpu(Pids /*pids*/) {
  return Asked<Survey>([](Survey& answer) {
    answer.cpu.struct_size = sizeof(kestrel_cpu);
    return kestrel_survey_cpu(&answer.cpu, &answer.result);
  });
}

auto SurveyGpus(Pids /*pids*/) {
  return Asked<Survey>([](Survey& answer) {
    answer.gpus[0].struct_size = sizeof(kestrel_gpu);
    return kestrel_survey_gpus(answer.gpus.data(), kCapacity, &answer.count, &answer.result);
  });
}

auto SurveyHardware(Pids /*pids*/) {
  return Asked<Survey>([](Survey& answer) {
    answer.gpus[0].struct_size = sizeof(kestrel_gpu);
    answer.cpu.struct_size = sizeof(kestrel_cpu);
    return kestrel_survey_hardware(answer.gpus.data(), kCapacity, &answer.count, &answer.result,
                                   &answer.cpu, &answer.cpu_result);
  });
}

auto GpuMemory(Pids /*pids*/) {
  return Asked<Answer>([](Answer& answer) {
    return kestrel_gpu_memory(1, &answer.bytes, &answer.total, &answer.result);
  });
}

auto CpuUsage(Pids pids) {
  return Asked<Percent>([=](Percent& answer) {
    return kestrel_cpu_usage(pids.other, 1, &answer.percent, &answer.result);
  });
}

auto ProcessRam(Pids pids) {
  return Asked<Answer>([=](Answer& answer) {
    return kestrel_process_used_ram(pids.other, &answer.bytes, &answer.result);
  });
}

// The calls whose only output is a number of bytes.
template <kestrel_status (*kCall)(std::uint64_t*, kestrel_result*)>
Answer Bytes(Pids /*pids*/) {
  return Asked<Answer>([](Answer& answer) { return kCall(&answer.bytes, &answer.result); });
}

auto FailsToAllocate(Pids /*pids*/) {
  return Asked<WillFail>([](WillFail& answer) {
    return kestrel_will_fail_to_allocate(kForecastBytes, &answer.fails, &answer.result);
  });
}

auto ForecastMemory(Pids /*pids*/) {
  return Asked<Forecast>([](Forecast& answer) {
    answer.forecast.struct_size = sizeof(kestrel_forecast);
    return kestrel_memory_forecast(kForecastBytes, &answer.forecast, &answer.result);
  });
}

}  // namespace

std::vector<Call> Calls() {
  return {
      CallOf<SurveyCpu, CpuText>::Named("kestrel_survey_cpu"),
      CallOf<SurveyGpus, GpusText>::Named("kestrel_survey_gpus"),
      CallOf<SurveyHardware, HardwareText>::Named("kestrel_survey_hardware"),
      CallOf<GpuMemory, BothBytesText>::Named("kestrel_gpu_memory"),
      CallOf<CpuUsage, PercentText>::Named("kestrel_cpu_usage"),
      CallOf<ProcessRam, BytesText>::Named("kestrel_process_used_ram"),
      CallOf<Bytes<kestrel_machine_physical_ram>, BytesText>::Named("kestrel_machine_physical_ram"),
      CallOf<Bytes<kestrel_available_ram>, BytesText>::Named("kestrel_available_ram"),
      CallOf<Bytes<kestrel_used_ram>, BytesText>::Named("kestrel_used_ram"),
      CallOf<Bytes<kestrel_machine_physical_vram>, BytesText>::Named(
          "kestrel_machine_physical_vram"),
      CallOf<Bytes<kestrel_available_vram>, BytesText>::Named("kestrel_available_vram"),
      CallOf<FailsToAllocate, WillFailText>::Named("kestrel_will_fail_to_allocate"),
      CallOf<ForecastMemory, ForecastText>::Named("kestrel_memory_forecast"),
  };
}

}  // namespace kestrel::tests
